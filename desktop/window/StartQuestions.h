#pragma once

#include "desktop/window/StartQuestion.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class KeyMaker;
class QWidget;
class RowPanel;
class ServerRows;

/// The boxes that ask before a row starts, and that help when its key can't be used. A child of the
/// main window.
class StartQuestions : public QObject
{
    Q_OBJECT
public:
    /// From now on `asking` ask here. What is chosen instead goes through `shares`, and the boxes
    /// stand over `window`; all are borrowed.
    StartQuestions(ServerRows *asking, RowPanel *shares, QWidget *window);

private:
    StartAnswer ask(ServerRow *row, StartDoubt doubt);
    StartAnswer askAbout(ServerRow *row, StartDoubt doubt);
    StartAnswer askAboutHome(ServerRow *row);
    StartAnswer askAboutLogin(ServerRow *row);
    StartAnswer askAboutLimit(const ServerRow *row);
    void tellOfKeys(ServerRow *row, const QString &reason);
    void showNextKeysBox();
    void keysBoxClosed();
    void makeKeys(const QList<QPointer<ServerRow>> &refused);
    void startWithKeys(const QList<QPointer<ServerRow>> &refused, const QString &keyFile,
                       const QString &certificateFile);

    /// Rows of one profile, whose key can't be used.
    struct Keyless
    {
        QString reason;
        QList<QPointer<ServerRow>> rows;
    };

    ServerRows *rows;
    RowPanel *panel;
    QWidget *parent;
    QList<std::shared_ptr<Keyless>> keyless; ///< a box tells of the first, then one of the next
    QPointer<KeyMaker> maker; ///< before it is done, the next would take the same names
    bool isAsking = false; ///< a question is open
};

/// Whether `stopping` may be cut off: asks over `window` when files are under way and their profile
/// wants warnings.
bool mayCut(const QList<ServerRow *> &stopping, QWidget *window);

/// Starts `row`, or stops it when its files under way may be cut off. The row may be null, or
/// vanish while that is asked.
void toggleRow(ServerRows *rows, const QPointer<ServerRow> &row, QWidget *window);
