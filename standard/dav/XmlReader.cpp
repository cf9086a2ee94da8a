#include "standard/dav/XmlReader.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>

namespace standard {

namespace {

constexpr auto languageAttribute = "xml:lang";

QByteArray attribute(const QString &name, const QString &value)
{
    return ' ' + name.toUtf8() + "=\"" + xmlText(value) + '"';
}

QByteArray declaration(const QXmlStreamNamespaceDeclaration &binding)
{
    const QString prefix = binding.prefix().toString();
    const QString name = QStringLiteral("xmlns");
    return attribute(prefix.isEmpty() ? name : name + QLatin1Char(':') + prefix,
                     binding.namespaceUri().toString());
}

/// None for other encodings: what is looked at beforehand must be what is read.
std::optional<QString> decoded(const QByteArray &body)
{
    const bool isUtf16 = body.startsWith("\xff\xfe") || body.startsWith("\xfe\xff");
    if (isUtf16 && body.size() % 2 != 0)
        return std::nullopt;
    if (isUtf16)
        return QString::fromUtf16(reinterpret_cast<const char16_t *>(body.constData()),
                                  body.size() / 2);
    const QByteArray mark("\xef\xbb\xbf");
    const QByteArray plain = body.startsWith(mark) ? body.mid(mark.size()) : body;
    const QString text = QString::fromUtf8(plain);
    return text.toUtf8() == plain ? std::make_optional(text) : std::nullopt;
}

struct Enclosure
{
    const char *begin;
    const char *end;
};

// What begins like a tag but is none.
constexpr std::array<Enclosure, 3> enclosures{ {
    { "<!--", "-->" },
    { "<![CDATA[", "]]>" },
    { "<?", "?>" },
} };

/// Where the one ends that begins at `at`; `at` when none does.
int endOfEnclosure(const QByteArray &xml, int at)
{
    for (const Enclosure &each : enclosures) {
        const auto size = qstrlen(each.begin);
        if (qstrncmp(xml.constData() + at, each.begin, size) != 0)
            continue;
        const int end = int(xml.indexOf(each.end, at + int(size)));
        return end < 0 ? int(xml.size()) : end;
    }
    return at;
}

/// The number of attributes of the tag at `at`, which moves to its end.
int countAttributes(const QByteArray &xml, int &at)
{
    int count = 0;
    char quote = '\0';
    for (; at < xml.size() && (quote != '\0' || xml.at(at) != '>'); ++at) {
        const char c = xml.at(at);
        if (quote == '\0' && (c == '"' || c == '\''))
            quote = c;
        else if (c == quote)
            quote = '\0';
        else if (quote == '\0' && c == '=')
            ++count;
    }
    return count;
}

/// Whether no tag has more attributes than we take: to find doubled ones the toolkit compares each
/// with all others before it tells of the element.
bool hasFewAttributes(const QByteArray &xml)
{
    for (int at = int(xml.indexOf('<')); at >= 0; at = int(xml.indexOf('<', at))) {
        const int end = endOfEnclosure(xml, at);
        if (end != at)
            at = end;
        else if (countAttributes(xml, at) > XmlReader::maxAttributes)
            return false;
    }
    return true;
}

} // namespace

XmlReader::XmlReader(const QByteArray &body, int mostElements)
    : elementsLeft(mostElements)
{
    const std::optional<QString> text = decoded(body);
    if (!text)
        bad = true;
    else if (!hasFewAttributes(text->toUtf8()))
        failAsExcessive();
    else
        reader.addData(*text);
}

void XmlReader::failAsExcessive()
{
    bad = true;
    excessive = true;
}

bool XmlReader::fail()
{
    bad = true;
    return false;
}

/// The next token; false at the end or when the body is bad.
bool XmlReader::advance()
{
    if (bad || reader.atEnd())
        return false;
    switch (reader.readNext()) {
    case QXmlStreamReader::StartElement:
        return push();
    case QXmlStreamReader::EndElement:
        namespaces -= int(levels.back().namespaces.size());
        levels.pop_back();
        return true;
    // Entities could make a small body a large one.
    case QXmlStreamReader::DTD:
    case QXmlStreamReader::EntityReference:
    case QXmlStreamReader::Invalid:
        return fail();
    default:
        return true;
    }
}

bool XmlReader::push()
{
    if (levels.size() == std::size_t(maxDepth))
        return fail();
    const QXmlStreamAttributes attributes = reader.attributes();
    const QLatin1String language(languageAttribute);
    Level level;
    level.namespaces = reader.namespaceDeclarations();
    level.hasLanguage = attributes.hasAttribute(language);
    if (level.hasLanguage)
        level.language = attributes.value(language).toString();
    else if (!levels.empty())
        level.language = levels.back().language;
    // Only the default namespace can be none (Namespaces in XML 1.0, section 5).
    for (const QXmlStreamNamespaceDeclaration &binding : std::as_const(level.namespaces)) {
        if (!binding.prefix().isEmpty() && binding.namespaceUri().isEmpty())
            return fail();
    }
    namespaces += int(level.namespaces.size());
    --elementsLeft;
    current = { reader.namespaceUri().toString(), reader.name().toString() };
    const bool good = !isExcessive(level);
    if (!good)
        failAsExcessive();
    levels.push_back(std::move(level));
    return good;
}

bool XmlReader::isExcessive(const Level &level) const
{
    const auto isLong = [](const QXmlStreamNamespaceDeclaration &binding) {
        return binding.namespaceUri().size() > maxNamespace;
    };
    return elementsLeft < 0 || current.local.size() > maxName || namespaces > maxNamespaces
        || std::any_of(level.namespaces.begin(), level.namespaces.end(), isLong);
}

bool XmlReader::enter()
{
    while (advance()) {
        if (reader.isStartElement())
            return true;
        if (reader.isEndElement())
            return false;
    }
    return false;
}

void XmlReader::skip()
{
    const std::size_t around = levels.size() - 1;
    while (levels.size() > around && advance()) { }
}

XmlElement XmlReader::take(int most)
{
    const QByteArray name = reader.qualifiedName().toUtf8();
    const QByteArray tag = startTag();
    const Level own = levels.back();
    const std::size_t around = levels.size() - 1;
    XmlElement element;
    QByteArray content;
    while (advance() && levels.size() > around) {
        if (content.size() > most)
            continue;
        if (reader.isStartElement())
            content += '<' + startTag() + '>';
        else if (reader.isEndElement())
            content += "</" + reader.qualifiedName().toUtf8() + '>';
        else if (reader.isCharacters()) {
            content += xmlText(reader.text().toString());
            element.text += reader.text();
        } else
            content += aside();
    }
    if (content.size() > most)
        return { false };
    element.xml = '<' + tag + inherited(own, tag + content);
    element.xml += content.isEmpty() ? "/>" : '>' + content + "</" + name + '>';
    return element.xml.size() > most ? XmlElement{ false } : element;
}

/// The comment or processing instruction that was just read; nothing when it was neither.
QByteArray XmlReader::aside() const
{
    if (reader.isComment())
        return "<!--" + reader.text().toUtf8() + "-->";
    if (!reader.isProcessingInstruction())
        return {};
    const QByteArray data = reader.processingInstructionData().toUtf8();
    return "<?" + reader.processingInstructionTarget().toUtf8() + (data.isEmpty() ? "" : " ") + data
        + "?>";
}

/// Of the current element, without its brackets.
QByteArray XmlReader::startTag() const
{
    QByteArray tag = reader.qualifiedName().toUtf8();
    for (const QXmlStreamNamespaceDeclaration &binding : levels.back().namespaces)
        tag += declaration(binding);
    const QXmlStreamAttributes attributes = reader.attributes();
    for (const QXmlStreamAttribute &each : attributes)
        tag += attribute(each.qualifiedName().toString(), each.value().toString());
    return tag;
}

/// What an element, which was just left, has from those around it: namespaces that its `markup`
/// may use, in names or in values, and the language.
QByteArray XmlReader::inherited(const Level &own, const QByteArray &markup) const
{
    QByteArray attributes;
    std::set<QString> known;
    for (const QXmlStreamNamespaceDeclaration &binding : own.namespaces)
        known.insert(binding.prefix().toString());
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        for (const QXmlStreamNamespaceDeclaration &binding : level->namespaces) {
            const QString prefix = binding.prefix().toString();
            const bool isUsed = prefix.isEmpty() || markup.contains(prefix.toUtf8() + ':');
            if (known.insert(prefix).second && isUsed)
                attributes += declaration(binding);
        }
    }
    if (!own.hasLanguage && !own.language.isEmpty())
        attributes += attribute(QLatin1String(languageAttribute), own.language);
    return attributes;
}

bool XmlReader::end()
{
    while (advance()) { }
    return !bad && !reader.hasError();
}

} // namespace standard
