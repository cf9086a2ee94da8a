#pragma once

#include "standard/http/Forwarded.h"
#include "standard/http/Method.h"
#include "standard/http/Status.h"
#include "standard/http/Uri.h"

#include <QByteArray>
#include <QtGlobal>

#include <optional>
#include <variant>
#include <vector>

namespace standard {

/// One line of a head.
struct Field
{
    QByteArray name;
    QByteArray value;
};

using Fields = std::vector<Field>;

/// How the body of a request is sent (RFC 9112, section 6).
struct Framing
{
    qint64 contentLength = 0; ///< bytes; 0 without a body, and when it is chunked
    bool chunked = false;
    bool expectsContinue = false; ///< the peer may hold its body back until it is asked for

    bool hasBody() const { return chunked || contentLength > 0; }
};

/// One request's head. A value of its own for each request.
struct Request
{
    Method method = Method::Unknown; ///< unknown ones are refused before anybody sees them
    QByteArray methodName;
    bool isForServer = false; ///< the target is "*": OPTIONS of the whole server
    Target target;
    int minorVersion = 1; ///< of HTTP/1
    bool keepAlive = true; ///< the peer wants the connection to go on
    Framing framing;
    Forwarded outside; ///< how it left its visitor
    Fields fields; ///< in order, values without blanks around them

    /// The value of a field, of several lines of that name joined with ", ". None when there is no
    /// such line. `name` is compared without case.
    std::optional<QByteArray> field(const char *name) const;

    /// The same; empty when there is none.
    QByteArray value(const char *name) const { return field(name).value_or(QByteArray()); }

    bool isHead() const { return method == Method::Head; }
};

constexpr int maxFields = 100;

/// Reads a head: its lines, each with its CR LF; the blank line may follow. Gives the status to
/// refuse it with when it is not exactly as RFC 9112 wants it: whoever guesses here may see other
/// requests than a proxy in front of it.
std::variant<Request, Status> parseHead(const QByteArray &head);

/// A number of digits alone. Those beyond any file count as its largest size.
std::optional<qint64> numberOf(const QByteArray &digits);

/// The parts of a comma-separated list without blanks around them; empty ones are left out.
std::vector<QByteArray> listItems(const QByteArray &value);

/// Whether such a list holds `item`, compared without case.
bool listHolds(const QByteArray &value, const char *item);

} // namespace standard
