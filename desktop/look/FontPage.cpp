#include "desktop/look/FontPage.h"

#include "desktop/look/Look.h"
#include "desktop/widgets/Fields.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int largestOffered = 24; // points

} // namespace

FontPage::FontPage()
    : chosen(QApplication::font())
    , preview(new QLabel(tr("This is how texts will look.")))
{
    // The font may be measured in pixels.
    if (chosen.pointSize() < 1)
        chosen.setPointSize(QFontInfo(chosen).pointSize());
    auto *size = new StepField(Look::smallestFont, largestOffered);
    size->spinBox()->setValue(chosen.pointSize());
    preview->setWordWrap(true);

    QVBoxLayout *body = addFrame(this, tr("Font Settings"));
    auto *row = new QHBoxLayout;
    row->addWidget(newCaption(tr("Size:"), size));
    row->addWidget(size, 1);
    body->addLayout(row);
    body->addWidget(preview);

    connect(size->spinBox(), QOverload<int>::of(&QSpinBox::valueChanged), this, &FontPage::setSize);
}

void FontPage::setSize(int points)
{
    chosen.setPointSize(points);
    preview->setFont(chosen);
    Q_EMIT controlChanged();
}
