#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

namespace standard {

/// What conditions of an If header are about.
class IfState
{
public:
    IfState() = default;
    virtual ~IfState() = default;
    IfState(const IfState &) = delete;
    IfState &operator=(const IfState &) = delete;

    /// Whether a lock of that token covers the resource. `resource` is as it stands between "<"
    /// and ">"; empty is the target of the request.
    virtual bool isLocked(const QByteArray &resource, const QByteArray &token) const = 0;

    /// With its quotes; empty when there is no such resource.
    virtual QByteArray etag(const QByteArray &resource) const = 0;
};

/// The If header of a request (RFC 4918, section 10.4).
class IfHeader
{
public:
    /// None for what the grammar doesn't know.
    static std::optional<IfHeader> parse(const QByteArray &value);

    /// Whether one of the lists is true; also for a header without any.
    bool holds(const IfState &state) const;

    /// Whether the token stands anywhere in it: the client knows of that lock.
    bool names(const QByteArray &token) const;

private:
    struct Condition
    {
        bool negated;
        bool isTag; ///< or a token
        QByteArray value;
    };
    struct List
    {
        QByteArray resource;
        std::vector<Condition> conditions;
    };

    static bool isTrue(const List &list, const IfState &state);

    friend class IfParser;

    std::vector<List> lists;
};

} // namespace standard
