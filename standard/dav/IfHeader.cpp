#include "standard/dav/IfHeader.h"

#include <algorithm>
#include <utility>

namespace standard {

/// Goes through the header once.
class IfParser
{
public:
    explicit IfParser(const QByteArray &text)
        : value(text)
    {
    }

    bool parse(IfHeader &into)
    {
        QByteArray resource;
        bool isTagged = false;
        for (skipBlanks(); !isAtEnd(); skipBlanks()) {
            // Lists without a resource stand in a header of their own.
            if (peek() == '<') {
                if (!into.lists.empty() && !isTagged)
                    return false;
                isTagged = true;
                const std::optional<QByteArray> tag = enclosed('<', '>');
                skipBlanks();
                if (!tag || tag->isEmpty() || peek() != '(')
                    return false;
                resource = *tag;
            }
            if (!list(into, resource))
                return false;
        }
        return !into.lists.empty();
    }

private:
    bool list(IfHeader &into, const QByteArray &resource)
    {
        if (!take('('))
            return false;
        IfHeader::List made{ resource, {} };
        for (skipBlanks(); !take(')'); skipBlanks()) {
            if (!condition(made))
                return false;
        }
        into.lists.push_back(std::move(made));
        return !into.lists.back().conditions.empty();
    }

    bool condition(IfHeader::List &into)
    {
        const bool negated = takeNot();
        skipBlanks();
        const bool isTag = peek() == '[';
        const std::optional<QByteArray> text = isTag ? entityTag() : enclosed('<', '>');
        if (!text || text->isEmpty())
            return false;
        into.conditions.push_back({ negated, isTag, *text });
        return true;
    }

    /// A tag may hold a "]".
    std::optional<QByteArray> entityTag()
    {
        take('[');
        const int begin = at;
        if (value.mid(at, 2) == "W/")
            at += 2;
        const std::optional<QByteArray> opaque = enclosed('"', '"');
        const int end = at;
        if (!opaque || !take(']'))
            return std::nullopt;
        return value.mid(begin, end - begin);
    }

    std::optional<QByteArray> enclosed(char open, char close)
    {
        if (!take(open))
            return std::nullopt;
        const int end = int(value.indexOf(close, at));
        if (end < 0)
            return std::nullopt;
        return value.mid(std::exchange(at, end + 1), end - at);
    }

    bool takeNot()
    {
        if (qstrnicmp(value.constData() + at, "not", 3) != 0)
            return false;
        at += 3;
        return true;
    }

    bool take(char c)
    {
        if (peek() != c)
            return false;
        ++at;
        return true;
    }

    void skipBlanks()
    {
        while (peek() == ' ' || peek() == '\t')
            ++at;
    }

    bool isAtEnd() const { return at >= value.size(); }
    char peek() const { return isAtEnd() ? '\0' : value.at(at); }

    const QByteArray &value;
    int at = 0;
};

std::optional<IfHeader> IfHeader::parse(const QByteArray &value)
{
    IfHeader header;
    if (!IfParser(value).parse(header))
        return std::nullopt;
    return header;
}

bool IfHeader::isTrue(const List &list, const IfState &state)
{
    return std::all_of(list.conditions.begin(), list.conditions.end(), [&](const Condition &each) {
        const bool matches = each.isTag ? state.etag(list.resource) == each.value
                                        : state.isLocked(list.resource, each.value);
        return matches != each.negated;
    });
}

bool IfHeader::holds(const IfState &state) const
{
    return lists.empty() || std::any_of(lists.begin(), lists.end(), [&state](const List &list) {
               return isTrue(list, state);
           });
}

bool IfHeader::names(const QByteArray &token) const
{
    return std::any_of(lists.begin(), lists.end(), [&token](const List &list) {
        return std::any_of(
            list.conditions.begin(), list.conditions.end(),
            [&token](const Condition &each) { return !each.isTag && each.value == token; });
    });
}

} // namespace standard
