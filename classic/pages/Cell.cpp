#include "classic/pages/Cell.h"

#include "classic/pages/Markup.h"

void addCellStart(QByteArray *page, const CellFrame &frame, const EntryFacts &facts,
                  const QByteArray &name)
{
    page->append(R"(<td align="center" width="200">)");
    if (frame.withCheckbox) {
        // The delete action tells folders from files by these names.
        page->append(R"(<input type="checkbox" name=")").append(facts.folder ? "d" : "f");
        page->append(R"(" value=")");
        addEscaped(page, name);
        page->append(R"("> )");
    }
    page->append(R"(<a href=")").append(frame.urlFolder);
    addEncodedPath(page, name);
    page->append(R"(">)");
}

void addFileFacts(QByteArray *page, const CellFrame &frame, const EntryFacts &facts)
{
    addSize(page, facts.size);
    page->append("<br>").append(frame.dates->text(facts.modified));
}
