#pragma once

#include "classic/http/FileReply.h"

// What the face answers by itself, before anybody is asked.

/// A status without a body.
class StatusReply final : public Responder
{
    Q_OBJECT
public:
    explicit StatusReply(Exchange &current);

    void reply() override { }
    void send(const QByteArray &status) { sendHeader(status, 0); }
};

/// What visitors may have to come to trust the server, see `authorityReply`.
class AuthorityFile final : public Responder
{
    Q_OBJECT
public:
    using Responder::Responder;

    /// Whether the request asks for it, and for nothing that is shared.
    static bool isAskedFor(const Exchange &exchange);

    void reply() override;
};

/// The page that asks for the password.
class LoginPage final : public FileReply
{
    Q_OBJECT
public:
    explicit LoginPage(Exchange &current);

    void reply() override;
};

/// The demand for a user name and password (RFC 7617).
class Challenge final : public Responder
{
    Q_OBJECT
public:
    explicit Challenge(Exchange &current);

    void reply() override;
};

/// The page for a form that is larger than forms are read.
class FormTooLarge final : public Responder
{
    Q_OBJECT
public:
    explicit FormTooLarge(Exchange &current);

    void reply() override;
};
