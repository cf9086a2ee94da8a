#include "desktop/look/ColorDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr QSize patchSize(36, 36);
constexpr int columns = 7;
constexpr int hues[columns] = { 0, 30, 55, 120, 180, 220, 290 };
constexpr int lightness[] = { 235, 200, 150, 100, 60 };
constexpr int saturation = 200;

} // namespace

QPixmap colorPatch(const QColor &color, const QSize &size)
{
    QPixmap patch(size);
    patch.fill(color);
    QPainter(&patch).drawRect(0, 0, size.width() - 1, size.height() - 1);
    return patch;
}

ColorDialog::ColorDialog(const QString &title, const QColor &color, QWidget *parent)
    : QDialog(parent)
    , patches(new QButtonGroup(this))
    , code(new Finger<QLineEdit>)
    , preview(new QLabel)
{
    setWindowTitle(title);
    auto *grid = new QGridLayout;
    for (int column = 0; column < columns; ++column) {
        const int grey = 255 * column / (columns - 1);
        addPatch(grid, QColor(grey, grey, grey), 0, column);
    }
    for (int level : lightness) {
        const int row = grid->rowCount();
        for (int column = 0; column < columns; ++column)
            addPatch(grid, QColor::fromHsl(hues[column], saturation, level), row, column);
    }

    auto *codeRow = new QHBoxLayout;
    codeRow->addWidget(newCaption(tr("Color:"), code));
    codeRow->addWidget(code, 1);
    codeRow->addWidget(preview);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(codeRow);
    layout->addStretch();
    auto *buttons = new OkCancelButtons(this);
    layout->addWidget(buttons);

    connect(code, &QLineEdit::textChanged, this, [this, buttons](const QString &text) {
        buttons->ok()->setEnabled(QColor::isValidColor(text));
        showColor();
    });
    code->setText(color.name());
}

void ColorDialog::addPatch(QGridLayout *grid, const QColor &color, int row, int column)
{
    auto *patch = new Finger<QToolButton>;
    patch->setIcon(colorPatch(color, patchSize));
    patch->setIconSize(patchSize);
    patch->setCheckable(true);
    patch->setAccessibleName(color.name());
    patches->addButton(patch);
    grid->addWidget(patch, row, column);
    connect(patch, &QToolButton::clicked, code, [this, color] { code->setText(color.name()); });
}

void ColorDialog::showColor()
{
    preview->setPixmap(color().isValid() ? colorPatch(color(), patchSize) : QPixmap());
}

QColor ColorDialog::color() const
{
    return QColor::isValidColor(code->text()) ? QColor(code->text()) : QColor();
}

std::optional<QColor> ColorDialog::ask(const QString &title, const QColor &color, QWidget *parent)
{
    ColorDialog dialog(title, color, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.color();
}
