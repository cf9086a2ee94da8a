#include "standard/dav/XmlReader.h"

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

} // namespace

XmlReader::XmlReader(const QByteArray &body)
    : reader(body)
{
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
    levels.push_back(std::move(level));
    current = { reader.namespaceUri().toString(), reader.name().toString() };
    return true;
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

XmlElement XmlReader::take()
{
    const QByteArray name = reader.qualifiedName().toUtf8();
    const QByteArray tag = startTag();
    const Level own = levels.back();
    const std::size_t around = levels.size() - 1;
    XmlElement element;
    QByteArray content;
    while (advance() && levels.size() > around) {
        if (reader.isStartElement())
            content += '<' + startTag() + '>';
        else if (reader.isEndElement())
            content += "</" + reader.qualifiedName().toUtf8() + '>';
        else if (reader.isCharacters()) {
            content += xmlText(reader.text().toString());
            element.text += reader.text();
        }
    }
    element.xml = '<' + tag + inherited(own, tag + content);
    element.xml += content.isEmpty() ? "/>" : '>' + content + "</" + name + '>';
    return element;
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
