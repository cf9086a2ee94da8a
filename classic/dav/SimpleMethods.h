#pragma once

#include "classic/dav/Dav.h"

/// OPTIONS: the same answer for every target and profile.
class Options : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;
};

/// HEAD: whether something exists, nothing more.
class Head : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;
};

/// LOCK: a nod for clients that insist on locking before they write. Nothing is locked.
class Lock : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;
};

/// UNLOCK: always fine.
class UnLock : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;
};
