#include "standard/http/Uri.h"

#include "server/Access.h"

#include <QList>

#include <algorithm>
#include <array>
#include <cctype>

namespace standard {

namespace {

constexpr std::array<const char *, 2> schemes{ "http://", "https://" };

/// The unreserved characters (RFC 3986, section 2.3). Clients compare our paths with theirs as they
/// stand, and encode all that may be encoded.
constexpr bool isLiteral(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/'
        || c == '-' || c == '.' || c == '_' || c == '~';
}

bool isHexPair(const QByteArray &text, int at)
{
    const auto isHex = [&text](int index) {
        return std::isxdigit(static_cast<unsigned char>(text[index])) != 0;
    };
    return at + 1 < text.size() && isHex(at) && isHex(at + 1);
}

/// Whether a URL can't hold it: blanks, controls, and what begins a fragment.
bool isForbidden(char c)
{
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7f' || c == '#';
}

/// The length of the scheme in front, with "://"; 0 when there is none of ours.
int schemeLength(const QByteArray &text)
{
    for (const char *scheme : schemes) {
        const auto size = int(qstrlen(scheme));
        if (qstrnicmp(text.constData(), scheme, uint(size)) == 0)
            return size;
    }
    return 0;
}

} // namespace

std::optional<QByteArray> percentDecoded(const QByteArray &text)
{
    for (int at = int(text.indexOf('%')); at >= 0; at = int(text.indexOf('%', at + 1))) {
        if (!isHexPair(text, at + 1))
            return {};
    }
    const QByteArray decoded = text.contains('%') ? QByteArray::fromPercentEncoding(text) : text;
    if (decoded.contains('\0'))
        return {};
    return decoded;
}

std::optional<Target> parseTarget(const QByteArray &text)
{
    if (std::any_of(text.begin(), text.end(), isForbidden))
        return {};
    Target target;
    QByteArray rest = text;
    if (const int scheme = schemeLength(text); scheme > 0) {
        const auto isAuthorityEnd = [](char c) { return c == '/' || c == '?'; };
        const auto begin = text.begin() + scheme;
        const auto end = std::find_if(begin, text.end(), isAuthorityEnd);
        target.authority = text.mid(scheme, int(end - begin));
        rest = text.mid(int(end - text.begin()));
        if (target.authority.isEmpty())
            return {};
        if (!rest.startsWith('/'))
            rest.prepend('/');
    }
    if (!rest.startsWith('/'))
        return {};
    const int mark = int(rest.indexOf('?'));
    target.rawPath = mark < 0 ? rest : rest.left(mark);
    target.query = mark < 0 ? QByteArray() : rest.mid(mark + 1);
    const std::optional<QByteArray> path = percentDecoded(target.rawPath);
    if (!path)
        return {};
    target.path = *path;
    return target;
}

std::optional<QByteArray> formValue(const QByteArray &form, const QByteArray &name)
{
    const std::vector<QByteArray> values = formValues(form, name);
    return values.empty() ? std::nullopt : std::optional(values.front());
}

std::vector<QByteArray> formValues(const QByteArray &form, const QByteArray &name)
{
    std::vector<QByteArray> values;
    for (const QByteArray &field : form.split('&')) {
        if (!field.startsWith(name + '='))
            continue;
        QByteArray value = field.mid(name.size() + 1);
        values.push_back(percentDecoded(value.replace('+', ' ')).value_or(QByteArray()));
    }
    return values;
}

QByteArray encodedPath(const QByteArray &path)
{
    std::string encoded;
    addEncoded(encoded, { path.constData(), std::size_t(path.size()) });
    return QByteArray::fromStdString(encoded);
}

void addEncoded(std::string &to, std::string_view path)
{
    constexpr auto digits = "0123456789ABCDEF";
    const std::size_t before = to.size();
    to.resize(before + path.size() * 3);
    char *end = to.data() + before;
    for (const char c : path) {
        if (isLiteral(c)) {
            *end++ = c;
            continue;
        }
        const auto code = static_cast<unsigned char>(c);
        *end++ = '%';
        *end++ = digits[code >> 4];
        *end++ = digits[code & 0xf];
    }
    to.resize(std::size_t(end - to.data()));
}

QByteArray urlPath(const UrlSpace &space, const QByteArray &path, bool isFolder)
{
    const QByteArray seen = seenFrom(space.home, path);
    const QByteArray url = space.prefix + '/' + encodedPath(seen);
    return isFolder && !seen.isEmpty() ? url + '/' : url;
}

} // namespace standard
