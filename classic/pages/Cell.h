#pragma once

#include "classic/pages/Entry.h"
#include "classic/pages/ShortDates.h"

#include <QByteArray>

/// What the cells of one page have in common. Lives while the page is made.
struct CellFrame
{
    QByteArray urlFolder; ///< URL path of the listed folder, percent-encoded, ending in "/"
    bool withCheckbox = false; ///< entries can be selected for deletion
    ShortDates *dates = nullptr; ///< borrowed
};

/// Appends what every cell begins with, as far as the start tag of its link. `name` is UTF-8.
void addCellStart(QByteArray *page, const CellFrame &frame, const EntryFacts &facts,
                  const QByteArray &name);

/// Appends the size and the time of a file.
void addFileFacts(QByteArray *page, const CellFrame &frame, const EntryFacts &facts);
