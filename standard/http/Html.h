#pragma once

#include <QByteArray>

namespace standard {

/// Text as it stands in a page, between tags and in attributes.
QByteArray escaped(QByteArray text);

/// What all pages begin with, up to the end of their head. `title` is a text, `style` the rules of
/// the page itself; browsers follow those that its fields allow alone, see `addFormProtection`.
QByteArray pageBegin(const QByteArray &title, const QByteArray &style = {});

} // namespace standard
