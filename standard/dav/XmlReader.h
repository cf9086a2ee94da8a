#pragma once

#include "standard/dav/XmlName.h"

#include <QXmlStreamReader>

#include <vector>

namespace standard {

/// An element with all it holds, fit to stand in any document.
struct XmlElement
{
    QByteArray xml; ///< UTF-8, with the namespaces and the language that it had from outside
    QString text; ///< what it says apart from its markup
};

/// Walks through the elements of a request's body. Anything that is not well-formed with its
/// namespaces, a document type, and more than `maxDepth` elements in one another make it bad.
class XmlReader
{
public:
    static constexpr int maxDepth = 32;

    explicit XmlReader(const QByteArray &body);

    /// Enters the next element of the current one; at first the root. False when there is none,
    /// and then the current one is the one around it, or when the body is bad.
    bool enter();

    /// What the element is called that was entered last.
    const XmlName &name() const { return current; }

    /// Leaves the current element without looking at the rest of it.
    void skip();

    /// Leaves the current element, which was just entered, and gives it.
    XmlElement take();

    /// Reads what is left. Whether the body was well-formed from its begin to its end.
    bool end();

    bool isBad() const { return bad; }

private:
    struct Level
    {
        QXmlStreamNamespaceDeclarations namespaces;
        QString language; ///< its own, else that of those around it
        bool hasLanguage = false; ///< of its own
    };

    bool advance();
    bool push();
    bool fail();
    QByteArray startTag() const;
    QByteArray inherited(const Level &own, const QByteArray &markup) const;

    QXmlStreamReader reader;
    std::vector<Level> levels; ///< from the root to the current element
    XmlName current;
    bool bad = false;
};

} // namespace standard
