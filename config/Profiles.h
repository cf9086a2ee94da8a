#pragma once

#include "config/Profile.h"
#include "config/RunningMark.h"

#include <memory>
#include <vector>

/// All profiles of the user and the mark that this run leaves in the global one. Made in `main`,
/// owns its profiles and outlives everything that runs with one.
class Profiles
{
public:
    /// Loads the global profile, then every other one of `where`, sorted by file name. A file that
    /// can't be used is left as it is.
    explicit Profiles(const Directories &where);

    /// The global profile's file says from now on that somebody runs. Waits for the disk.
    void beginRun() const;

    /// The orderly end of what was begun: once no other program of this user runs, the global
    /// profile's file says so. Nothing else in it changes. False when it can't be written.
    bool endInOrder();

    const Directories &directories() const { return m_directories; }

    /// The first profile, from which new ones are cloned.
    Profile *global() const { return all.front().get(); }

    int count() const { return int(all.size()); }

    /// The profile at `index`; null when there is none.
    Profile *at(int index) const;
    int indexOf(const Profile *profile) const;

    /// The first profile with this name, or null.
    Profile *find(const QString &name) const;

    /// The profile that `profile` is, or is an edited copy of: they share the file. Null when it
    /// is none of these.
    Profile *original(const Profile *profile) const;

    /// A new profile of the values of `origin`, stored under `name` with all that the text file of
    /// `origin` says. Null when it can't be written. The name is free, and one for a file.
    Profile *duplicate(const Profile *origin, const QString &name);

    /// Stores the profile under another such name; who runs with it goes on. The file of the global
    /// one keeps its own. False when that fails; nothing has changed then.
    bool rename(Profile *profile, const QString &name);

    /// Deletes the profile and its file; false when the file can't be deleted.
    bool remove(Profile *profile);

private:
    Q_DISABLE_COPY(Profiles)

    Profile *add(std::unique_ptr<Profile> profile);
    void loadGlobal();
    void loadOthers();

    Directories m_directories;
    RunningMark mark;
    std::vector<std::unique_ptr<Profile>> all;
};
