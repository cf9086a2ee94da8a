#pragma once

#include <QPalette>

/// The colours that a user chooses.
struct SchemeColors
{
    QColor background;
    QColor text;
    QColor buttons;
};

/// A palette of these colours in which everything can be read: every role of text stands out from
/// what it is written on, links, tool tips, hints and switched-off controls included.
QPalette schemeOf(const SchemeColors &colors);

/// How well one colour can be read on the other, from 1 to 21 (WCAG 2.1, contrast ratio).
double contrast(const QColor &one, const QColor &other);
