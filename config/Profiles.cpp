#include "config/Profiles.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace {

template <typename Test>
Profile *firstWhere(const std::vector<std::unique_ptr<Profile>> &all, Test test)
{
    const auto found =
        std::find_if(all.begin(), all.end(), [&test](const auto &each) { return test(*each); });
    return found == all.end() ? nullptr : found->get();
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
    if (global->cleanExit)
        global->amend([](Profile &profile) { profile.cleanExit = false; });
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

bool Profiles::endInOrder()
{
    // First, so that of two that end at once at least one finds itself the last.
    mark.release();
    if (mark.hasNeighbours())
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

bool Profiles::remove(Profile *profile)
{
    if (!profile->remove())
        return false;
    all.erase(all.begin() + indexOf(profile));
    return true;
}
