#pragma once

#include "standard/http/Resource.h"

#include <QByteArray>
#include <QtGlobal>

#include <functional>
#include <memory>
#include <optional>

class UploadFile;

namespace standard {

/// The base of the handlers that receive a file, or one after another, and give it its name once it
/// is whole.
class FileTaker : public ResourceHandler
{
public:
    explicit FileTaker(Exchange &current);
    ~FileTaker() override;

protected:
    void ended() override { discard(); }

    /// Whether a file that is whole may take its name, asked right before it does. Who says no has
    /// told that to whoever sent it.
    virtual bool mayBeKept(const UploadFile &received) = 0;

    /// How the file got its name; not told when nobody waits for it any more, nor when it was
    /// refused meanwhile.
    virtual void taken(const UploadFile &received) = 0;

    /// What is to be done once it has its name, before that is told, also when nobody waits any
    /// more; it must not touch this object. Null for nothing.
    virtual std::function<void()> whenKept() { return {}; }

    /// Gives the file its name once the disk has it, if that may still be. When nobody waits for
    /// it any more, only with `evenUnasked`. The next one can be received meanwhile.
    void keep(bool evenUnasked);

    /// Lets go of what was received.
    void discard();

    /// Whether the disk of an open folder has room for `bytes`, as far as it tells.
    static bool diskHolds(int folder, quint64 bytes);

    std::shared_ptr<UploadFile> upload; ///< while the body is received
    bool replaces = false; ///< something that has its name

private:
    void takeName(const std::shared_ptr<UploadFile> &received);
};

/// A time of a file as sync programs tell it: seconds since 1970-01-01 UTC, some with a fraction.
/// None when it is no such time.
std::optional<qint64> wantedTime(const QByteArray &text);

} // namespace standard
