#pragma once

#include <QByteArray>
#include <QString>

#include <tuple>

namespace standard {

constexpr auto davSpace = "DAV:"; ///< RFC 4918, section 21.1

/// What an XML element or a property is called.
struct XmlName
{
    QString space; ///< the namespace; empty for none
    QString local;

    bool operator==(const XmlName &other) const
    {
        return local == other.local && space == other.space;
    }
    bool operator<(const XmlName &other) const
    {
        return std::tie(space, local) < std::tie(other.space, other.local);
    }
    bool isDav(const char *name) const
    {
        return local == QLatin1String(name) && space == QLatin1String(davSpace);
    }
};

/// Text as it stands in an element or a quoted attribute. What XML can't hold is left out.
QByteArray xmlText(const QString &text);

/// Whether XML can hold every character.
bool isXmlText(const QString &text);

/// An empty element of that name, for a document that binds the prefix D to `davSpace`.
QByteArray emptyElement(const XmlName &name);

} // namespace standard
