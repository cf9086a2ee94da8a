#pragma once

#include <QImage>
#include <QWidget>

/// A QR code (ISO/IEC 18004) as large as its room: dark on light in any colours, as cameras want
/// it, with the margin that they need.
class QrCode : public QWidget
{
    Q_OBJECT

public:
    QrCode();

    /// `text` has room in a code, as every address has. Screen readers say it.
    void encode(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// One pixel for each module, margin included.
    const QImage &modules() const { return picture; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QImage picture;
};
