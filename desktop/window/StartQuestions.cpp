#include "desktop/window/StartQuestions.h"

#include "config/Profile.h"
#include "desktop/settings/KeyMaker.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/RowPanel.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"
#include "desktop/window/WindowText.h"

#include <QDir>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

/// Null when all of them have gone.
ServerRow *firstLeft(const QList<QPointer<ServerRow>> &refused)
{
    const auto found = std::find_if(refused.begin(), refused.end(),
                                    [](const QPointer<ServerRow> &row) { return !row.isNull(); });
    return found == refused.end() ? nullptr : found->data();
}

bool stillRests(const QList<QPointer<ServerRow>> &refused)
{
    return std::any_of(refused.begin(), refused.end(),
                       [](const QPointer<ServerRow> &row) { return row && !row->isListening(); });
}

} // namespace

StartQuestions::StartQuestions(ServerRows *asking, RowPanel *shares, QWidget *window)
    : QObject(window)
    , rows(asking)
    , panel(shares)
    , parent(window)
{
    rows->setQuestion([this](ServerRow *row, StartDoubt doubt) { return ask(row, doubt); });
    connect(rows, &ServerRows::keysRefused, this, &StartQuestions::tellOfKeys);
}

StartAnswer StartQuestions::ask(ServerRow *row, StartDoubt doubt)
{
    // Another start of the program wants the same meanwhile.
    if (std::exchange(isAsking, true))
        return StartAnswer::No;
    const StartAnswer answer = askAbout(row, doubt);
    isAsking = false;
    return answer;
}

StartAnswer StartQuestions::askAbout(ServerRow *row, StartDoubt doubt)
{
    switch (doubt) {
    case StartDoubt::HomeIsOpen:
        return askAboutHome(row);
    case StartDoubt::LoginIsOff:
        return askAboutLogin(row);
    case StartDoubt::LimitReached:
        return askAboutLimit(row);
    case StartDoubt::None:
        break;
    }
    return StartAnswer::Yes;
}

StartAnswer StartQuestions::askAboutHome(ServerRow *row)
{
    const QPointer<ServerRow> still(row);
    const QString shared = row->server()->shared().absoluteFilePath();
    const int chosen =
        askOneOf(parent,
                 WindowText::tr(
                     "Everyone who reaches this computer could read, change and delete all of %1.")
                     .arg(QDir::toNativeSeparators(shared)),
                 { WindowText::tr("Choose Folder..."), WindowText::tr("Share it anyway") });
    if (chosen == 1)
        return StartAnswer::Yes;
    const QString folder = chosen == 0
        ? choosePath(parent, PathKind::Folder, WindowText::tr("Choose Folder..."), shared)
        : QString();
    if (folder.isEmpty() || !still)
        return StartAnswer::No;
    panel->share(folder, row);
    return StartAnswer::LookAgain;
}

StartAnswer StartQuestions::askAboutLogin(ServerRow *row)
{
    const QPointer<ServerRow> still(row);
    const QString former = row->formerProfile();
    const int chosen = askOneOf(
        parent,
        WindowText::tr("%1 asked for a login when it ran last, with the profile \"%2\". "
                       "With \"%3\" everyone may come in.")
            .arg(row->url(), former, row->profile()->name),
        { WindowText::tr("Use \"%1\"").arg(former), WindowText::tr("Start without a login") });
    if (chosen == 1)
        return StartAnswer::Yes;
    if (chosen < 0 || !still)
        return StartAnswer::No;
    row->useFormerProfile();
    return StartAnswer::LookAgain;
}

StartAnswer StartQuestions::askAboutLimit(const ServerRow *row)
{
    const bool again =
        askYesNo(parent,
                 row->url() + QLatin1Char('\n')
                     + WindowText::tr("The traffic limit is reached. Begin a new count?"));
    return again ? StartAnswer::Yes : StartAnswer::No;
}

void StartQuestions::tellOfKeys(ServerRow *row, const QString &reason)
{
    for (const auto &each : std::as_const(keyless)) {
        const ServerRow *first = firstLeft(each->rows);
        if (first && first->profile() == row->profile())
            return each->rows.append(row);
    }
    keyless.append(std::make_shared<Keyless>(Keyless{ reason, { row } }));
    if (keyless.size() == 1)
        showNextKeysBox();
}

void StartQuestions::showNextKeysBox()
{
    // Some may have gone, or got their keys, meanwhile.
    while (!keyless.isEmpty() && !stillRests(keyless.constFirst()->rows))
        keyless.removeFirst();
    if (keyless.isEmpty() || maker)
        return;
    const std::shared_ptr<Keyless> shown = keyless.constFirst();
    QMessageBox *box =
        newBox(parent, QMessageBox::Warning,
               WindowText::tr("The server does not start without its key and certificate.")
                   + QLatin1Char('\n') + shown->reason);
    const QPushButton *make = addBoxButton(box, WindowText::tr("Make a new key"));
    connect(make, &QPushButton::clicked, this, [this, shown] { makeKeys(shown->rows); });
    // Queued: the button is heard later.
    connect(box, &QDialog::finished, this, &StartQuestions::keysBoxClosed, Qt::QueuedConnection);
    box->show();
}

void StartQuestions::keysBoxClosed()
{
    keyless.removeFirst();
    showNextKeysBox();
}

/// For the profile of these rows, which start with them.
void StartQuestions::makeKeys(const QList<QPointer<ServerRow>> &refused)
{
    const ServerRow *row = firstLeft(refused);
    if (!row)
        return;
    maker = new KeyMaker(row->profile()->directories().profiles, this);
    connect(maker, &QObject::destroyed, this, &StartQuestions::showNextKeysBox);
    connect(maker, &KeyMaker::failed, this,
            [this](const QString &why) { showBox(parent, QMessageBox::Warning, why); });
    connect(maker, &KeyMaker::made, this,
            [this, refused](const QString &keyFile, const QString &certificateFile) {
                startWithKeys(refused, keyFile, certificateFile);
            });
    maker->start();
}

void StartQuestions::startWithKeys(const QList<QPointer<ServerRow>> &refused,
                                   const QString &keyFile, const QString &certificateFile)
{
    const ServerRow *first = firstLeft(refused);
    if (!first)
        return;
    const Profile *profile = first->profile();
    const std::unique_ptr<Profile> edited = profile->clone();
    edited->privateKeyFile = keyFile;
    edited->publicKeyFile = certificateFile;
    edited->keyPassword.clear();
    rows->profileEdited(edited.get());
    for (const QPointer<ServerRow> &row : refused) {
        if (row && row->profile() == profile)
            rows->start(row);
    }
}

bool mayCut(const QList<ServerRow *> &stopping, QWidget *window)
{
    const bool asks = std::any_of(stopping.begin(), stopping.end(), [](const ServerRow *row) {
        return row->isTransferring() && row->profile()->warningMode == Qt::Checked;
    });
    return !asks
        || askYesNo(window,
                    WindowText::tr("Files are being transferred; stopping cuts them off.")
                        + QLatin1Char('\n') + WindowText::tr("Do you want to stop?"));
}

void toggleRow(ServerRows *rows, const QPointer<ServerRow> &row, QWidget *window)
{
    if (!row || !mayCut({ row }, window) || !row)
        return;
    if (row->isListening())
        row->stop();
    else
        rows->start(row);
}
