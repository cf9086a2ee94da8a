#include "desktop/settings/ProfileDialog.h"

#include "config/Profile.h"
#include "desktop/settings/ProfileUser.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/InputDialog.h"

#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>

#include <algorithm>
#include <memory>

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

QPushButton *dialogButton(const QString &text)
{
    auto *button = new Finger<QPushButton>(text);
    button->setAutoDefault(false);
    return button;
}

} // namespace

ProfileDialog::ProfileDialog(ProfileUser *user, QWidget *parent)
    : QDialog(parent)
    , item(user)
    , profiles(new ChoiceBox)
{
    setWindowTitle(tr("Change Profile"));
    for (const Profile *profile : std::as_const(Profile::confList))
        profiles->addItem(listedName(profile));
    profiles->setCurrentIndex(int(Profile::confList.indexOf(user->profile())));

    const QString caption = tr("Select profile or edit profile name");
    QPushButton *create = dialogButton(tr("New profile"));
    QPushButton *remove = dialogButton(tr("Remove profile"));

    auto *grid = new QGridLayout(this);
    grid->addWidget(newCaption(caption, profiles), 0, 0, 1, 2);
    grid->addWidget(profiles, 1, 0, 1, 2);
    grid->addWidget(create, 2, 0);
    grid->addWidget(remove, 2, 1);
    grid->addWidget(new OkCancelButtons(this), 4, 0, 1, 2);

    grid->setRowStretch(3, 1);

    connect(create, &QPushButton::clicked, this, &ProfileDialog::newProfile);
    connect(remove, &QPushButton::clicked, this, &ProfileDialog::removeProfile);
    // An address that disappears takes its item along, whether or not this dialog is open.
    if (auto *object = dynamic_cast<QObject *>(user))
        connect(object, &QObject::destroyed, this, &ProfileDialog::reject);
}

QString ProfileDialog::refusal(const QString &name)
{
    if (name.trimmed().isEmpty())
        return tr("A profile needs a name.");
    if (!namesPlainFile(name))
        return tr("A profile name can't start with a dot and can't contain \"/\".");
    if (QFile::encodeName(name).size() > longestName)
        return tr("This profile name is too long.");

    Profile candidate;
    candidate.setFileName(name);
    if (Profile::find(name) || QFile::exists(candidate.fileName()))
        return tr("There is already a profile named \"%1\".").arg(name);
    return {};
}

void ProfileDialog::accept()
{
    if (Profile *profile = chosenProfile())
        item->useProfile(profile);
    QDialog::accept();
}

void ProfileDialog::newProfile()
{
    const QString name = InputDialog::ask(tr("Profile name"), {}, this).value_or(QString());
    if (name.isEmpty())
        return;
    const QString reason = refusal(name);
    if (!reason.isEmpty()) {
        warn(this, reason);
        return;
    }

    std::unique_ptr<Profile> profile(Profile::global()->clone());
    profile->setFileName(name);
    profile->name = name;
    if (profile->save())
        addProfile(profile.release());
    else
        warn(this, tr("Can't write file: ") + profile->fileName());
}

void ProfileDialog::addProfile(Profile *profile)
{
    Profile::confList.append(profile);
    profiles->addItem(listedName(profile));
    profiles->setCurrentIndex(profiles->count() - 1);
}

void ProfileDialog::removeProfile()
{
    Profile *profile = chosenProfile();
    if (!profile)
        return;
    // The program itself uses the global profile, even when no server does.
    if (profile->useCount > 0 || profile == Profile::global()) {
        warn(this, tr("Used config profile is not removable."));
        return;
    }
    if (!profile->remove())
        return;
    profiles->removeItem(profiles->currentIndex());
    Profile::confList.removeOne(profile);
    delete profile;
}

Profile *ProfileDialog::chosenProfile() const
{
    // The list shows the profiles in the order of `confList`.
    return Profile::confList.value(profiles->currentIndex(), nullptr);
}
