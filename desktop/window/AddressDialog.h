#pragma once

#include <QDialog>

class QBoxLayout;

/// One address for a phone to take by its camera, and what its user compares: what is shared there
/// and, where it is encrypted, by which certificate it is known. Fills small screens.
/// A child of the main window.
class AddressDialog : public QDialog
{
    Q_OBJECT
public:
    /// `facts` is plain text of one or more lines.
    AddressDialog(const QString &url, const QString &facts, QWidget *parent);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QBoxLayout *halves; ///< the picture, and what is said of it
};
