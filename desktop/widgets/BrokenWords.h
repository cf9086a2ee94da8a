#pragma once

#include "desktop/widgets/Touch.h"

#include <QEvent>
#include <QFontMetrics>
#include <QSizePolicy>
#include <QString>

/// `text` with further lines, broken at spaces, where one is wider than `room`, in pixels.
QString brokenToFit(const QString &text, const QFontMetrics &metrics, int room);

/// How wide the widest line of `text` is, in pixels.
int widthOf(const QString &text, const QFontMetrics &metrics);

/// A button whose words go on in further lines where it is too narrow for them.
template <typename Base> class BrokenWords : public Finger<Base>
{
public:
    explicit BrokenWords(QWidget *parent = nullptr)
        : Finger<Base>(parent)
    {
        this->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed); // narrower than its hint
    }

    explicit BrokenWords(const QString &words, QWidget *parent = nullptr)
        : BrokenWords(parent)
    {
        setWords(words);
    }

    /// Instead of `setText`.
    void setWords(const QString &words)
    {
        unbroken = words;
        this->setAccessibleName(words);
        showWords();
    }

    /// As wide as the unbroken words, however they are broken now: rows of widgets turn by that.
    QSize sizeHint() const override
    {
        return { frameWidth() + widthOf(unbroken, this->fontMetrics()),
                 Finger<Base>::sizeHint().height() };
    }

    /// As narrow as the longest word.
    QSize minimumSizeHint() const override
    {
        const QString narrowest = brokenToFit(unbroken, this->fontMetrics(), 0);
        return { frameWidth() + widthOf(narrowest, this->fontMetrics()),
                 Finger<Base>::sizeHint().height() };
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        Finger<Base>::resizeEvent(event);
        showWords();
    }

    void changeEvent(QEvent *event) override
    {
        Finger<Base>::changeEvent(event);
        if (event->type() == QEvent::FontChange)
            showWords();
    }

private:
    /// What is around the words, in pixels.
    int frameWidth() const
    {
        return Finger<Base>::sizeHint().width() - widthOf(this->text(), this->fontMetrics());
    }

    void showWords()
    {
        const QString broken =
            brokenToFit(unbroken, this->fontMetrics(), this->width() - frameWidth());
        if (broken != this->text())
            this->setText(broken);
    }

    QString unbroken;
};
