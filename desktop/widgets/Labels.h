#pragma once

#include <QIcon>
#include <QLabel>

/// A label that shows one of two pictures, for on and for off.
class StateLabel : public QLabel
{
    Q_OBJECT

public:
    StateLabel(QIcon on, QIcon off, QWidget *parent);

    bool isOn() const { return m_on; }

public Q_SLOTS:
    void setOn(bool on);

private:
    void showState();

    QIcon onIcon;
    QIcon offIcon;
    bool m_on = false;
};

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

/// A link with an on/off picture before it.
class StateLinkLabel : public QWidget
{
    Q_OBJECT

public:
    StateLinkLabel(const QIcon &on, const QIcon &off, QWidget *parent);

    StateLabel *picture() const { return m_picture; }
    LinkLabel *link() const { return m_link; }

private:
    StateLabel *m_picture;
    LinkLabel *m_link;
};
