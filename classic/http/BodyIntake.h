#pragma once

#include "classic/http/BodyCollector.h"
#include "classic/http/BodySaver.h"

#include <QByteArray>

class RequestReader;
class Socket;
class UploadFile;

/// Receives the body of a request, or the first part of a multipart body: into memory or into a
/// file. It calls nobody.
class BodyIntake
{
public:
    enum class Target {
        Form, ///< kept in memory
        PartHead, ///< the headers of the first part, kept in memory
        File
    };

    struct Wanted
    {
        Target target;
        qint64 length; ///< bytes of the body; of what is kept in memory, the most that is
        UploadFile *upload = nullptr; ///< borrowed: the file
        QByteArray delimiter = {}; ///< where the file ends, if it is a part; the rest is dropped
    };

    static constexpr qint64 maxPartHead =
        qint64(8) * 1024; ///< bytes of part headers in a multipart body
    static constexpr qint64 maxForm = qint64(1024) * 1024; ///< bytes of a form

    enum class Progress {
        Waiting, ///< for more to arrive
        TurnOver, ///< others wait for theirs
        Done
    };

    /// Both are borrowed and outlive it.
    BodyIntake(RequestReader &requestReader, Socket &peerSocket);

    /// The next body is received for this.
    void start(const Wanted &what);

    /// Takes what has arrived.
    Progress goOn();

    /// The rest won't come.
    void cutOff();

    /// What it is, or was last, received for.
    Target target() const { return m_target; }

    /// What was kept in memory: of a form that breaks off what there is, of a part's headers none.
    QByteArray takeBytes() { return collector.take(); }

    /// How a file ended.
    SaveResult result() const { return m_result; }

    /// Whether the peer holds its body back and was not asked for it.
    bool isHeldBack() const;

    /// Goes on to the next request.
    void next()
    {
        asked = false;
        m_result = Saved;
    }

private:
    Progress save();
    Progress end(SaveResult how);

    RequestReader &reader;
    Socket &socket;
    BodyCollector collector;
    BodySaver saver;
    Target m_target = Target::Form;
    SaveResult m_result = Saved;
    bool asked = false; ///< for a body that was held back
};
