#include "desktop/look/FontPage.h"

#include "desktop/widgets/Fields.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int smallestSize = 3; // points
constexpr int largestSize = 24; // points

} // namespace

FontPage::FontPage(QWidget *parent)
    : QWidget(parent)
    , chosen(QApplication::font())
    , preview(new QLabel(tr("This is how texts will look.")))
{
    // The font may be measured in pixels.
    if (chosen.pointSize() < 1)
        chosen.setPointSize(QFontInfo(chosen).pointSize());
    auto *size = new StepField(smallestSize, largestSize);
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
