#pragma once

#include "classic/dav/Dav.h"

/// OPTIONS: the same answer for every target and profile.
class Options : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "O";

    explicit Options(Request *request);

    using Dav::reply;
    void reply() override;
};

/// HEAD: whether something exists, nothing more.
class Head : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "H";

    explicit Head(Request *request);

    using Dav::reply;
    void reply(const QFileInfo &shared) override;
};

/// LOCK: a nod for clients that insist on locking before they write. Nothing is locked.
class Lock : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "L";

    explicit Lock(Request *request);

    using Dav::reply;
    void reply(const QFileInfo &shared) override;
};

/// UNLOCK: always fine.
class UnLock : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "UL";

    explicit UnLock(Request *request);

    using Dav::reply;
    void reply() override;
};
