#include "standard/http/Conditions.h"

#include "files/Entry.h"
#include "server/HttpDate.h"
#include "standard/http/Request.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

namespace standard {

namespace {

struct Tag
{
    bool weak = false;
    QByteArray text; ///< with its quotes
};

/// What an If-Match or If-None-Match lists.
struct TagList
{
    bool any = false; ///< "*"
    std::vector<Tag> tags;

    bool holdsStrong(const QByteArray &tag) const
    {
        return std::any_of(tags.begin(), tags.end(), [&tag](const Tag &listed) {
            return !listed.weak && listed.text == tag;
        });
    }
    bool holdsWeak(const QByteArray &tag) const
    {
        return std::any_of(tags.begin(), tags.end(),
                           [&tag](const Tag &listed) { return listed.text == tag; });
    }
};

int skipBlanks(const QByteArray &text, int at)
{
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
        ++at;
    return at;
}

/// Reads one tag and moves `at` behind it. None when there is no tag.
std::optional<Tag> readTag(const QByteArray &text, int &at)
{
    Tag tag;
    tag.weak = text.mid(at, 2) == "W/";
    const int begin = tag.weak ? at + 2 : at;
    const int end = int(text.indexOf('"', begin + 1));
    if (begin >= text.size() || text[begin] != '"' || end < 0)
        return {};
    tag.text = text.mid(begin, end + 1 - begin);
    at = end + 1;
    return tag;
}

/// None when it is no list of tags. They may hold commas.
std::optional<TagList> parseTags(const QByteArray &text)
{
    TagList list;
    if (text == "*") {
        list.any = true;
        return list;
    }
    for (int at = skipBlanks(text, 0); at < text.size(); at = skipBlanks(text, at)) {
        const std::optional<Tag> tag = readTag(text, at);
        if (!tag)
            return {};
        list.tags.push_back(*tag);
        at = skipBlanks(text, at);
        if (at < text.size() && text[at++] != ',')
            return {};
    }
    return list;
}

bool matches(const QByteArray &value, const Validators &current)
{
    const std::optional<TagList> list = parseTags(value);
    return list && current.exists && (list->any || list->holdsStrong(current.tag));
}

bool matchesNone(const QByteArray &value, const Validators &current)
{
    const std::optional<TagList> list = parseTags(value);
    return !list || !current.exists || !(list->any || list->holdsWeak(current.tag));
}

/// A field that is no date, or a resource without one, decides nothing.
std::optional<bool> changedSince(const Request &request, const char *name,
                                 const Validators &current)
{
    const std::optional<qint64> date = parseHttpDate(request.value(name));
    if (!date || !current.exists)
        return {};
    return current.modified > *date;
}

bool onlyReads(const Request &request)
{
    return request.method == Method::Get || request.method == Method::Head;
}

bool preconditionHolds(const Request &request, const Validators &current)
{
    if (const auto tags = request.field("If-Match"))
        return matches(*tags, current);
    return !changedSince(request, "If-Unmodified-Since", current).value_or(false);
}

bool isNews(const Request &request, const Validators &current)
{
    if (const auto tags = request.field("If-None-Match"))
        return matchesNone(*tags, current);
    return !onlyReads(request)
        || changedSince(request, "If-Modified-Since", current).value_or(true);
}

/// The words of a tag, each a number.
class TagText
{
public:
    void add(quint64 number, char behind)
    {
        at = std::to_chars(at, text.data() + text.size(), number, 16).ptr;
        *at++ = behind;
    }

    QByteArray toByteArray() const { return { text.data(), int(at - text.data()) }; }

private:
    std::array<char, 128> text{ '"' };
    char *at = text.data() + 1;
};

} // namespace

Validators Validators::of(const EntryFacts &facts)
{
    return { facts.exists, facts.file ? entityTag(facts) : QByteArray(), facts.seconds };
}

QByteArray entityTag(const EntryFacts &facts)
{
    TagText text;
    text.add(facts.inode, '-');
    text.add(quint64(facts.size), '-');
    text.add(quint64(facts.seconds), '.');
    text.add(quint64(facts.nanoseconds), '-');
    text.add(quint64(facts.changeSeconds), '.');
    text.add(quint64(facts.changeNanoseconds), '"');
    return text.toByteArray();
}

Verdict judge(const Request &request, const Validators &current)
{
    if (!preconditionHolds(request, current))
        return Verdict::Failed;
    if (isNews(request, current))
        return Verdict::Proceed;
    return onlyReads(request) ? Verdict::NotModified : Verdict::Failed;
}

bool rangeApplies(const Request &request, const Validators &current)
{
    const std::optional<QByteArray> value = request.field("If-Range");
    if (!value)
        return true;
    if (value->startsWith('"') || value->startsWith("W/"))
        return *value == current.tag;
    return parseHttpDate(*value) == current.modified;
}

bool hasConditions(const Request &request)
{
    return std::any_of(request.fields.begin(), request.fields.end(), [](const Field &field) {
        return qstrnicmp(field.name.constData(), "If-", 3) == 0;
    });
}

bool isConditional(const Request &request)
{
    return request.field("If-Match") || request.field("If-None-Match")
        || request.field("If-Unmodified-Since");
}

} // namespace standard
