#include "config/Profiles.h"

#include "config/ProfileText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

template <typename Test>
Profile *firstWhere(const std::vector<std::unique_ptr<Profile>> &all, Test test)
{
    const auto found =
        std::find_if(all.begin(), all.end(), [&test](const auto &each) { return test(*each); });
    return found == all.end() ? nullptr : found->get();
}

/// A stored copy; null when it can't be written.
std::unique_ptr<Profile> storedAs(const Profile &origin, const QString &name)
{
    std::unique_ptr<Profile> copy = origin.clone();
    copy->setFileName(name);
    copy->name = name;
    // First, as saving keeps the lines that only another program understands.
    if (!copyText(origin.fileName(), copy->fileName()))
        return {};
    if (copy->save())
        return copy;
    copy->remove();
    return {};
}

} // namespace

Profiles::Profiles(const Directories &where)
    : m_directories(where)
    , mark(where.profiles + QLatin1String("running"))
{
    loadGlobal();
    loadOthers();
}

void Profiles::loadGlobal()
{
    Profile *global =
        add(std::make_unique<Profile>(m_directories, QLatin1String(Profile::globalFile)));
    if (global->name.isEmpty())
        global->name = QCoreApplication::translate("Profile", "Default");
}

void Profiles::loadOthers()
{
    const QString suffix = QLatin1String(Profile::fileSuffix);
    // Filters of names would load the library of regular expressions.
    const QStringList files = QDir(m_directories.profiles).entryList(QDir::Files, QDir::Name);
    for (const QString &file : files) {
        if (!file.endsWith(suffix))
            continue;
        Profile *profile = add(std::make_unique<Profile>(m_directories, file));
        // Found by its name it is refused; not found, another one would be taken instead.
        if (!profile->isUsable())
            profile->name = file.chopped(int(qstrlen(Profile::fileSuffix)));
    }
}

void Profiles::beginRun() const
{
    if (global()->cleanExit)
        global()->amend([](Profile &profile) { profile.cleanExit = false; });
}

bool Profiles::endInOrder()
{
    // First, so that of two that end at once at least one finds itself the last.
    mark.release();
    if (mark.hasNeighbours() || global()->cleanExit)
        return true;
    return global()->amend([](Profile &profile) { profile.cleanExit = true; });
}

Profile *Profiles::at(int index) const
{
    return index >= 0 && index < count() ? all[std::size_t(index)].get() : nullptr;
}

int Profiles::indexOf(const Profile *profile) const
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [profile](const auto &each) { return each.get() == profile; });
    return found == all.end() ? -1 : int(found - all.begin());
}

Profile *Profiles::find(const QString &name) const
{
    return firstWhere(all, [&name](const Profile &each) { return each.name == name; });
}

Profile *Profiles::original(const Profile *profile) const
{
    return firstWhere(all, [profile](const Profile &each) {
        return &each == profile || each.fileName() == profile->fileName();
    });
}

Profile *Profiles::add(std::unique_ptr<Profile> profile)
{
    all.push_back(std::move(profile));
    return all.back().get();
}

Profile *Profiles::duplicate(const Profile *origin, const QString &name)
{
    std::unique_ptr<Profile> copy = storedAs(*origin, name);
    return copy ? add(std::move(copy)) : nullptr;
}

bool Profiles::rename(Profile *profile, const QString &name)
{
    if (profile == global()) {
        const QString former = profile->name;
        if (profile->amend([&name](Profile &each) { each.name = name; }))
            return true;
        profile->name = former;
        return false;
    }
    const std::unique_ptr<Profile> renamed = storedAs(*profile, name);
    if (!renamed)
        return false;
    Profile former(m_directories);
    former.apply(profile);
    if (!former.remove() && QFile::exists(former.fileName())) {
        renamed->remove();
        return false;
    }
    profile->apply(renamed.get());
    return true;
}

bool Profiles::remove(Profile *profile)
{
    if (!profile->remove())
        return false;
    all.erase(all.begin() + indexOf(profile));
    return true;
}
