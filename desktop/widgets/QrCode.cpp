#include "desktop/widgets/QrCode.h"

#include <QPainter>

#include <qrcodegen.hpp>

namespace {

constexpr int margin = 4; // modules
constexpr int leastModule = 4; // pixels
constexpr int usualModule = 8;

QImage drawn(const qrcodegen::QrCode &code)
{
    const int size = code.getSize() + 2 * margin;
    QImage picture(size, size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    for (int y = 0; y < code.getSize(); ++y) {
        for (int x = 0; x < code.getSize(); ++x) {
            if (code.getModule(x, y))
                picture.setPixelColor(x + margin, y + margin, Qt::black);
        }
    }
    return picture;
}

} // namespace

QrCode::QrCode()
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void QrCode::encode(const QString &text)
{
    picture = drawn(
        qrcodegen::QrCode::encodeText(text.toUtf8().constData(), qrcodegen::QrCode::Ecc::MEDIUM));
    setAccessibleName(tr("QR code: %1").arg(text));
    updateGeometry();
    update();
}

QSize QrCode::sizeHint() const
{
    return picture.size() * usualModule;
}

QSize QrCode::minimumSizeHint() const
{
    return picture.size() * leastModule;
}

void QrCode::paintEvent(QPaintEvent *)
{
    // Whole pixels a module: none is blurred, none wider than others.
    const int scale = qMax(1, qMin(width(), height()) / picture.width());
    QRect place(QPoint(), picture.size() * scale);
    place.moveCenter(rect().center());
    QPainter(this).drawImage(place, picture);
}
