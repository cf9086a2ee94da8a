#pragma once

#include <QWidget>

class QBoxLayout;

/// Widgets side by side, or one below the other where they would be cut off.
class TurningRow : public QWidget
{
    Q_OBJECT

public:
    explicit TurningRow(QWidget *parent = nullptr);

    void add(QWidget *widget, int stretch);

    /// As narrow as one below the other.
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;

private:
    void turn();

    QBoxLayout *m_row;
};
