#pragma once

#include <QLabel>

/// A label of one line whose whole text is a link, shortened in the middle when there is too
/// little room. `linkActivated` tells the link's target on a click or, with the focus, on Enter.
class LinkLabel : public QLabel
{
    Q_OBJECT

public:
    explicit LinkLabel(QWidget *parent);

    /// `text` is plain text, shown to the letter.
    void setLink(const QString &text, const QString &target);

    /// The whole text, however much of it is shown.
    QString linkText() const { return plain; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showLink();

    QString plain;
    QString target;
};
