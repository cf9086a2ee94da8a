#pragma once

#include "server/Activity.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QStringList>

#include <deque>
#include <vector>

/// What visitors have done lately, and what else was noted, newest first: a row of texts for each.
/// The same again and again, as when a film is skipped through, is one row.
class DeedLog : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Time, Visitor, Event, File, ColumnCount };

    static constexpr int maxRows = 200;

    /// Takes those that tell something: not those that only look at folders or ask what is allowed.
    void add(const std::vector<Deed> &deeds, const QDateTime &now);

    /// Further ones were not noted.
    void addGap(const QDateTime &now);

    /// No deed, but something that the user should know.
    void addNote(const QString &text, const QDateTime &now);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Entry
    {
        QDateTime time; ///< of the last one
        QStringList texts; ///< but for the time
        int times = 1;
    };

    void addOne(const Deed &deed, const QDateTime &now);
    void enter(Entry entry);

    std::deque<Entry> entries;
};

/// Whether the user is told of it.
bool isTelling(const Deed &deed);

/// What was done, translated: "Upload", "Refused (403)".
QString deedName(const Deed &deed);

/// As people read it: line breaks and what turns the direction of writing are spelled out.
QString shownPath(const QByteArray &path);

/// A tool tip that shows the text as it is: one that looks like HTML would be taken for that.
QString richTip(const QString &text);

/// The record of a deed in the log file: a JSON object and a line feed.
QByteArray deedLine(const Deed &deed, const QDateTime &now);

/// The same where deeds were not noted, and of something else that is to be known.
QByteArray gapLine(const QDateTime &now);
QByteArray noteLine(const QString &text, const QDateTime &now);
