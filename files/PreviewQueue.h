#pragma once

#include "files/FileDescriptor.h"
#include "files/PictureId.h"

#include <QByteArray>
#include <QHash>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <utility>

/// Why a preview is wanted; what is looked at goes first.
enum class Urgency { Listed, InView };

/// Opens a picture for reading; gives none when it can't.
using PictureOpener = std::function<FileDescriptor()>;

struct PreviewJob
{
    PictureId id;
    QByteArray extension; ///< "png" or "jpg"
    PictureOpener open;
};

/// The pictures that wait for their preview. Of the same urgency, the one that was asked for last
/// goes first: a page that was left is not worth a page that is seen.
class PreviewQueue
{
public:
    /// `capacity` pictures wait at most; beyond, the one that would have gone last goes unmade.
    explicit PreviewQueue(std::size_t capacity)
        : m_capacity(capacity)
    {
    }

    /// Adds a picture, or moves it ahead when it waits already. It never becomes less urgent.
    void ask(PreviewJob job, Urgency urgency);

    /// Hands over the picture that is next, if one waits.
    std::optional<PreviewJob> takeNext();

    void clear();

private:
    using Place = std::pair<Urgency, quint64>; ///< with the turn in which it was asked for
    using Jobs = std::map<Place, PreviewJob>;

    PreviewJob take(Jobs::iterator position);

    const std::size_t m_capacity;
    Jobs jobs; ///< the next one at the end
    QHash<PictureId, Place> places; ///< of all `jobs`
    quint64 turn = 0;
};
