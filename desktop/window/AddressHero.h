#pragma once

#include "desktop/widgets/TurningRow.h"
#include "platform/Links.h"

#include <QPointer>

class LinkLabel;
class QPushButton;
class ServerRow;

/// The address that a visitor is to be given: large, as a link, to be copied, and as a picture for
/// phones. Of the other ones it knows the names. A child of the address list.
class AddressHero : public TurningRow
{
    Q_OBJECT
public:
    explicit AddressHero(QWidget *parent);

    /// Shows the best address of these rows, which run, and nothing when there are none.
    void showRows(QList<ServerRow *> running);

    /// The network of the address shown and, a line each, the others, best first; those that nobody
    /// may reach only once the user wants them. HTML.
    QString othersText() const;

    /// The parts in the order in which the Tab key reaches them.
    QList<QWidget *> tabOrder() const;

Q_SIGNALS:
    void copyWanted(const QString &address);
    void othersChanged(); ///< as the user wanted more of them, or fewer

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Place
    {
        QPointer<ServerRow> row;
        QString url;
        LinkKind kind = LinkKind::Unknown;
        bool isReachable = true;
    };

    void layOut();
    void enlargeLink();
    void showPicture();

    QList<Place> places; ///< best first
    LinkLabel *link;
    QPushButton *copy;
    QPushButton *picture;
    QPushButton *more; ///< shows those that nobody may reach
};
