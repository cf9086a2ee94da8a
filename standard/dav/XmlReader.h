#pragma once

#include "standard/dav/XmlName.h"
#include "standard/http/Status.h"

#include <QXmlStreamReader>

#include <limits>
#include <vector>

namespace standard {

/// An element with all it holds, fit to stand in any document.
struct XmlElement
{
    bool isWhole = true; ///< else nothing of it is kept
    QByteArray xml = {}; ///< UTF-8, with the namespaces and the language that it had from outside
    QString text = {}; ///< what it says apart from its markup
};

/// Walks through the elements of a request's body, in UTF-8, or in UTF-16 with its mark. Anything
/// that is not well-formed with its namespaces, a document type, and more of something than anybody
/// needs make it bad.
class XmlReader
{
public:
    static constexpr int maxDepth = 32; ///< of elements in one another
    // What they cost grows with their square, or with the answer.
    static constexpr int maxAttributes = 64; ///< of one element
    static constexpr int maxNamespaces = 64; ///< declared where an element stands
    static constexpr int maxNamespace = 512; ///< units of UTF-16, like the next
    static constexpr int maxName = 256;

    /// `mostElements` that are entered or skipped.
    explicit XmlReader(const QByteArray &body, int mostElements = std::numeric_limits<int>::max());

    /// Enters the next element of the current one; at first the root. False when there is none,
    /// and then the current one is the one around it, or when the body is bad.
    bool enter();

    /// What the element is called that was entered last.
    const XmlName &name() const { return current; }

    /// Leaves the current element without looking at the rest of it.
    void skip();

    /// Leaves the current element, which was just entered, and gives it; only its name when it has
    /// more than `most` bytes.
    XmlElement take(int most);

    /// Reads what is left. Whether the body was well-formed from its begin to its end.
    bool end();

    /// What to refuse a body with that is bad.
    Status refusal() const { return excessive ? Status::ContentTooLarge : Status::BadRequest; }

    /// The body is bad: it has too much of something.
    void failAsExcessive();

private:
    struct Level
    {
        QXmlStreamNamespaceDeclarations namespaces;
        QString language; ///< its own, else that of those around it
        bool hasLanguage = false; ///< of its own
    };

    bool advance();
    bool push();
    bool isExcessive(const Level &level) const;
    bool fail();
    QByteArray aside() const;
    QByteArray startTag() const;
    QByteArray inherited(const Level &own, const QByteArray &markup) const;

    QXmlStreamReader reader;
    std::vector<Level> levels; ///< from the root to the current element
    XmlName current;
    int elementsLeft;
    int namespaces = 0; ///< that the levels declare
    bool bad = false;
    bool excessive = false;
};

} // namespace standard
