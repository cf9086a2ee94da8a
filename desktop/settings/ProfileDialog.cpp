#include "desktop/settings/ProfileDialog.h"

#include "config/Profiles.h"
#include "desktop/settings/ProfileUser.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/InputDialog.h"
#include "desktop/widgets/Prompts.h"

#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>

#include <algorithm>

namespace {

// File systems take 255 bytes; the suffix and those of copies made while saving need some.
constexpr int longestName = 200; // bytes

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control;
}

/// Whether a file of this name stands in the folder of the profiles, and is found there again.
bool namesPlainFile(const QString &name)
{
    return !name.startsWith(QLatin1Char('.')) && !name.contains(QLatin1Char('/'))
        && std::none_of(name.cbegin(), name.cend(), isControl);
}

/// What the list calls `profile`: a damaged file gives no name, but must be told from others.
QString listedName(const Profile *profile)
{
    return profile->name.isEmpty() ? QFileInfo(profile->fileName()).fileName() : profile->name;
}

QString cantWrite(const Profiles &profiles, const QString &name)
{
    return ProfileDialog::tr("Can't write file: ") + profiles.directories().profiles + name
        + QLatin1String(Profile::fileSuffix);
}

} // namespace

ProfileDialog::ProfileDialog(Profiles *choice, ProfileUser *user, QWidget *parent)
    : QDialog(parent)
    , item(user)
    , profiles(choice)
    , list(new ChoiceBox)
{
    setWindowTitle(tr("Change Profile"));
    for (int i = 0; i < profiles->count(); ++i)
        list->addItem(listedName(profiles->at(i)));
    list->setCurrentIndex(profiles->indexOf(user->profile()));

    const QString caption = tr("Select profile or edit profile name");
    QPushButton *create = newButton(tr("New profile"));
    QPushButton *duplicate = newButton(tr("Duplicate profile"));
    QPushButton *rename = newButton(tr("Rename profile"));
    QPushButton *remove = newButton(tr("Remove profile"));

    auto *grid = new QGridLayout(this);
    grid->addWidget(newCaption(caption, list), 0, 0, 1, 2);
    grid->addWidget(list, 1, 0, 1, 2);
    grid->addWidget(create, 2, 0);
    grid->addWidget(duplicate, 2, 1);
    grid->addWidget(rename, 3, 0);
    grid->addWidget(remove, 3, 1);
    grid->addWidget(new OkCancelButtons(this), 5, 0, 1, 2);

    grid->setRowStretch(4, 1);

    connect(create, &QPushButton::clicked, this, [this] { addCopyOf(profiles->global(), {}); });
    connect(duplicate, &QPushButton::clicked, this, &ProfileDialog::duplicateProfile);
    connect(rename, &QPushButton::clicked, this, &ProfileDialog::renameProfile);
    connect(remove, &QPushButton::clicked, this, &ProfileDialog::removeProfile);
    // An address that disappears takes its item along, whether or not this dialog is open.
    if (auto *object = dynamic_cast<QObject *>(user))
        connect(object, &QObject::destroyed, this, &ProfileDialog::reject);
}

QString ProfileDialog::refusal(const Profiles &profiles, const QString &name)
{
    if (name.trimmed().isEmpty())
        return tr("A profile needs a name.");
    if (!namesPlainFile(name))
        return tr("A profile name can't start with a dot and can't contain \"/\".");
    if (QFile::encodeName(name).size() > longestName)
        return tr("This profile name is too long.");

    Profile candidate(profiles.directories());
    candidate.setFileName(name);
    if (profiles.find(name) || QFile::exists(candidate.fileName()))
        return tr("There is already a profile named \"%1\".").arg(name);
    return {};
}

void ProfileDialog::accept()
{
    if (Profile *profile = chosenProfile())
        item->useProfile(profile);
    QDialog::accept();
}

/// Of a new profile; empty when the user gives none that is free.
QString ProfileDialog::askName(const QString &proposed)
{
    const QString name = InputDialog::ask(tr("Profile name"), proposed, this).value_or(QString());
    if (name.isEmpty())
        return {};
    const QString reason = refusal(*profiles, name);
    if (!reason.isEmpty())
        warn(this, reason);
    return reason.isEmpty() ? name : QString();
}

void ProfileDialog::addCopyOf(const Profile *origin, const QString &proposed)
{
    const QString name = askName(proposed);
    if (name.isEmpty())
        return;
    const Profile *made = profiles->duplicate(origin, name);
    if (!made)
        return warn(this, cantWrite(*profiles, name));
    list->addItem(listedName(made));
    list->setCurrentIndex(list->count() - 1);
}

void ProfileDialog::duplicateProfile()
{
    const Profile *origin = readableProfile();
    if (!origin)
        return;
    int number = 2;
    const auto numbered = [&] { return QStringLiteral("%1 %2").arg(origin->name).arg(number); };
    while (profiles->find(numbered()))
        ++number;
    addCopyOf(origin, numbered());
}

void ProfileDialog::renameProfile()
{
    const Profile *profile = readableProfile();
    const QString former = profile ? profile->name : QString();
    const QString name = profile ? askName(former) : QString();
    if (name.isEmpty())
        return;
    if (!profiles->rename(chosenProfile(), name))
        return warn(this, cantWrite(*profiles, name));
    list->setItemText(list->currentIndex(), name);
    Q_EMIT renamed(former, name);
}

void ProfileDialog::removeProfile()
{
    Profile *profile = chosenProfile();
    if (!profile)
        return;
    // The program itself uses the global profile, even when no server does.
    if (profile->useCount > 0 || profile == profiles->global()) {
        warn(this, tr("Used config profile is not removable."));
        return;
    }
    if (!askYesNo(this, tr("Remove the profile \"%1\" and its users?").arg(listedName(profile))))
        return;
    if (profiles->remove(profile))
        list->removeItem(list->currentIndex());
}

Profile *ProfileDialog::chosenProfile() const
{
    // The list shows them in their order.
    return profiles->at(list->currentIndex());
}

/// The chosen one. Null, with a word, when its file does not say what it holds.
const Profile *ProfileDialog::readableProfile()
{
    const Profile *profile = chosenProfile();
    if (!profile || profile->isUsable())
        return profile;
    warn(this, tr("This profile can't be used until its settings are saved."));
    return nullptr;
}
