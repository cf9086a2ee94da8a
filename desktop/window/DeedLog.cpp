#include "desktop/window/DeedLog.h"

#include "desktop/window/WindowText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>
#include <array>

namespace {

constexpr int firstRedirection = 300; ///< of the status codes
constexpr int firstRefusal = 400;
constexpr int longestNotedPath = 512; ///< bytes, of what is noted

struct Kind
{
    const char *method;
    const char *name;
};

constexpr std::array kinds{
    Kind{ "GET", QT_TRANSLATE_NOOP("MainWindow", "Download") },
    Kind{ "PUT", QT_TRANSLATE_NOOP("MainWindow", "Upload") },
    Kind{ "POST", QT_TRANSLATE_NOOP("MainWindow", "Upload") },
    Kind{ "PATCH", QT_TRANSLATE_NOOP("MainWindow", "Change") },
    Kind{ "DELETE", QT_TRANSLATE_NOOP("MainWindow", "Deletion") },
    Kind{ "MKCOL", QT_TRANSLATE_NOOP("MainWindow", "New folder") },
    Kind{ "COPY", QT_TRANSLATE_NOOP("MainWindow", "Copy") },
    Kind{ "MOVE", QT_TRANSLATE_NOOP("MainWindow", "Move") },
};

const Kind *kindOf(const Deed &deed)
{
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const Kind &kind) { return deed.method == kind.method; });
    return found == kinds.end() ? nullptr : found;
}

QString visitorName(const Client &client)
{
    QString address = client.address.toString();
    if (client.account.isEmpty())
        return address;
    return QString::fromUtf8(client.account) + QLatin1String(" (") + address + QLatin1Char(')');
}

/// Somebody may ask for a path of any length.
QByteArray shortened(const QByteArray &path)
{
    return path.size() <= longestNotedPath ? path : path.left(longestNotedPath) + "...";
}

bool isUnseen(QChar c)
{
    return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format
        || c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
}

/// What can't be seen, or turns the direction of writing, as JSON would have it.
QString spelledOut(const QString &text)
{
    QString shown;
    for (const QChar c : text)
        shown += isUnseen(c)
            ? QStringLiteral("\\u%1").arg(uint(c.unicode()), 4, 16, QLatin1Char('0'))
            : QString(c);
    return shown;
}

QByteArray lineOf(QJsonObject record, const QDateTime &now)
{
    record.insert(QStringLiteral("time"), now.toUTC().toString(Qt::ISODateWithMs));
    const QByteArray json = QJsonDocument(record).toJson(QJsonDocument::Compact);
    return spelledOut(QString::fromUtf8(json)).toUtf8() + '\n';
}

} // namespace

bool isTelling(const Deed &deed)
{
    const bool isLook = deed.method == "GET" && (deed.isFolder || deed.path.endsWith('/'));
    const bool leadsOn = deed.status >= firstRedirection && deed.status < firstRefusal;
    return kindOf(deed) && !leadsOn && !(isLook && deed.status < firstRefusal);
}

QString deedName(const Deed &deed)
{
    const Kind *kind = kindOf(deed);
    if (!kind)
        return QString::fromLatin1(deed.method);
    const QString name = WindowText::tr(kind->name);
    if (!deed.isWhole || deed.status == 0)
        return WindowText::tr("%1 broken off").arg(name);
    return deed.status < firstRefusal
        ? name
        : WindowText::tr("%1 refused (%2)").arg(name).arg(deed.status);
}

QString shownPath(const QByteArray &path)
{
    return spelledOut(QString::fromUtf8(shortened(path)));
}

QString richTip(const QString &text)
{
    return QLatin1String("<span>") + text.toHtmlEscaped() + QLatin1String("</span>");
}

QByteArray deedLine(const Deed &deed, const QDateTime &now)
{
    const QJsonObject record{
        { QStringLiteral("address"), deed.client.address.toString() },
        { QStringLiteral("account"), QString::fromUtf8(deed.client.account) },
        { QStringLiteral("program"), QString::fromUtf8(deed.client.program) },
        { QStringLiteral("method"), QString::fromLatin1(deed.method) },
        { QStringLiteral("path"), QString::fromUtf8(shortened(deed.path)) },
        { QStringLiteral("status"), deed.status },
        { QStringLiteral("whole"), deed.isWhole },
    };
    return lineOf(record, now);
}

QByteArray gapLine(const QDateTime &now)
{
    return lineOf({ { QStringLiteral("missed"), true } }, now);
}

QByteArray noteLine(const QString &text, const QDateTime &now)
{
    return lineOf({ { QStringLiteral("note"), text } }, now);
}

void DeedLog::add(const std::vector<Deed> &deeds, const QDateTime &now)
{
    for (const Deed &deed : deeds) {
        if (isTelling(deed))
            addOne(deed, now);
    }
}

void DeedLog::addOne(const Deed &deed, const QDateTime &now)
{
    enter({ now, { visitorName(deed.client), deedName(deed), shownPath(deed.path) } });
}

void DeedLog::addGap(const QDateTime &now)
{
    enter({ now, { {}, WindowText::tr("More than could be noted"), {} } });
}

void DeedLog::addNote(const QString &text, const QDateTime &now)
{
    enter({ now, { {}, WindowText::tr("Note"), text } });
}

void DeedLog::enter(Entry entry)
{
    if (!entries.empty() && entries.front().texts == entry.texts) {
        entries.front().time = entry.time;
        ++entries.front().times;
        Q_EMIT dataChanged(index(0, 0), index(0, ColumnCount - 1));
        return;
    }
    beginInsertRows({}, 0, 0);
    entries.push_front(std::move(entry));
    endInsertRows();
    if (entries.size() <= std::size_t(maxRows))
        return;
    beginRemoveRows({}, maxRows, maxRows);
    entries.pop_back();
    endRemoveRows();
}

int DeedLog::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(entries.size());
}

int DeedLog::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DeedLog::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    const Entry &entry = entries[std::size_t(index.row())];
    if (index.column() == Time)
        return QLocale().toString(entry.time.time(), QLocale::ShortFormat);
    const QString text = entry.texts.at(index.column() - Visitor);
    if (role == Qt::ToolTipRole)
        return richTip(text);
    const bool isCounted = index.column() == Event && entry.times > 1;
    return isCounted ? WindowText::tr("%1, %2 times").arg(text).arg(entry.times) : text;
}

QVariant DeedLog::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const std::array<QString, ColumnCount> names{ WindowText::tr("Time"), WindowText::tr("Visitor"),
                                                  WindowText::tr("Event"), WindowText::tr("File") };
    return names.at(std::size_t(section));
}
