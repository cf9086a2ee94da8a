#pragma once

#include <QByteArray>

namespace standard {

/// Text as it stands in a page, between tags and in attributes.
QByteArray escaped(QByteArray text);

/// What all pages begin with, up to the end of their head. `title` is a text; `elements` are HTML
/// and end the head. Of styles and scripts browsers follow what its fields allow, see
/// `Protection.h`.
QByteArray pageBegin(const QByteArray &title, const QByteArray &elements = {});

} // namespace standard
