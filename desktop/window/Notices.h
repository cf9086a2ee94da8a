#pragma once

#include "platform/Notifier.h"
#include "server/Activity.h"
#include "server/RecentCounts.h"

#include <QObject>

#include <vector>

class QWidget;

/// Tells by the desktop's notifications what happens while the user does not look at the window,
/// unless that is not wanted.
class Notices : public QObject
{
    Q_OBJECT
public:
    /// `mainWindow` is borrowed and outlives it.
    explicit Notices(QWidget *mainWindow);

    /// Of those that come again within the hour nothing is told.
    void tellVisitor(const QString &address);

    /// Of what was done, the uploads that are whole.
    void tellUploads(const std::vector<Deed> &deeds);

    /// Something that a box would tell as well. False when the box is to do it.
    bool tell(const QString &title, const QString &text);

    /// Of what is told by a box where the desktop does not tell it.
    static QString limitTitle() { return tr("Traffic limit"); }

private:
    bool isWanted() const;

    QWidget *window;
    Notifier notifier;
    RecentCounts seen; ///< visitors, by address
};
