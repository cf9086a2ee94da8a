#pragma once

#include <QDialog>

#include <optional>

class QBoxLayout;
class QLabel;
class QrCode;

/// An address, and what is to be said of it: plain text of one or more lines.
struct AddressCard
{
    QString url;
    QString facts;
};

/// One address for a phone to take by its camera, and what its user compares: what is shared there
/// and, where it is encrypted, by which certificate it is known; beside it, where the phone comes
/// to trust that certificate. Fills small screens. A child of the main window.
class AddressDialog : public QDialog
{
    Q_OBJECT
public:
    /// `authority` leads to that of this machine; none where it has not signed the certificate.
    AddressDialog(const AddressCard &share, const std::optional<AddressCard> &authority,
                  QWidget *parent);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void turnTo(const AddressCard &card);

    QBoxLayout *halves; ///< the picture, and what is said of it
    QrCode *picture;
    QLabel *address;
    QLabel *facts;
};
