#pragma once

#include <QList>
#include <QSettings>
#include <QString>
#include <QStringList>

/// What is kept of one row of the address table: in "list.ini" a group named by the row's index.
struct SavedRow
{
    int port = 0; ///< 0: none is saved
    QString file; ///< empty: none is saved
    QString profile;
    QString address; ///< read from a file: set only when the row is an added port
    bool addedPort = false; ///< a further port of an address that has a row of its own
    QString formerProfile; ///< see `ServerRow`; written in the place of `profile`
    bool running = false; ///< not in the file
    bool restsAlone = false; ///< was stopped while others ran; not in the file
    qint64 sent = 0; ///< bytes; not in the file
    qint64 received = 0; ///< bytes; not in the file
    bool portDamaged = false; ///< a port is saved that is none

    static SavedRow read(QSettings *settings, int index);
    void write(QSettings *settings, int index) const;

    /// False when it ran with other profiles.
    bool renameProfile(const QString &from, const QString &to);
};

/// The file "list.ini" and, within a run, the rows whose address went away.
/// A value of the rows' keeper.
class SavedRows
{
public:
    /// More rows than this are not looked for, whatever the file says.
    static constexpr int maxRows = 256;

    /// Reads the file once; what is written later does not change what was read. Nothing is taken
    /// from a damaged file, which is kept beside under its name + ".bad".
    explicit SavedRows(const QString &fileName);

    QString fileName() const { return file.fileName(); }

    /// Where a file lies now that could not be read: itself, or its copy. Empty when all is well.
    QString damagedFile() const { return damaged; }

    void write(const SavedRow &row, int group) { row.write(&file, group); }

    /// What was read of the first address that nobody has taken; defaults where there is none.
    SavedRow next() const;

    /// The same, for a row that has it from now on: it is not kept here any more.
    SavedRow takeNext();

    /// What was read of the ports that were added to `address`, for rows that have it from now on.
    QList<SavedRow> takeAddedPorts(const QString &address);

    /// A profile has another name, in the file too.
    void renameProfile(const QString &from, const QString &to);

    /// The addresses that are to have no row, though the device has them.
    QStringList removed() const;
    void setRemoved(const QStringList &addresses);

    /// Remembers a row whose address went away.
    void keep(const SavedRow &row) { gone.append(row); }

    /// Gives back what was kept of `address`, in the order in which it was kept.
    QList<SavedRow> takeKept(const QString &address);

    /// All rows rest now: none of the kept ones is to go on by itself when its address is back.
    void forgetRunning();

    /// Writes behind the first `rows` groups the kept rows and those that were read and nobody has
    /// taken, as their addresses were not there in this run; and the number of all.
    void writeRest(int rows);

    /// Puts everything on disk; false when that fails, the file is unchanged then.
    bool flush();

private:
    QSettings file;
    QList<SavedRow> stored; ///< as read, of rows that nobody has taken
    QString damaged; ///< see `damagedFile`
    QList<SavedRow> gone;
};
