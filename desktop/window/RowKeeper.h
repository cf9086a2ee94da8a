#pragma once

#include "desktop/window/CertificateRenewal.h"
#include "desktop/window/DeviceNetwork.h"
#include "desktop/window/NotingSink.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/ServerRows.h"

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <optional>

/// Keeps the server rows in line with the addresses of the device, and what is saved of them with
/// the rows, as soon as the user has chosen something. Made by the main window; the rows are its
/// own and end with it.
///
/// In simple mode all rows are kept as one.
class RowKeeper : public QObject
{
    Q_OBJECT
public:
    /// Makes the rows of the addresses that `source` gives now, as they were saved, and looks for
    /// others from time to time. `choice` outlives the rows.
    RowKeeper(Profiles *choice, const std::shared_ptr<const ServerSetup> &common,
              AddressSource source);

    ServerRows *rows() { return &m_rows; }

    /// Whether what was saved could not be read.
    bool beganAnew() const { return !saved.damagedFile().isEmpty(); }
    bool hasNetwork() const { return !network.addresses().isEmpty(); }

    /// Shares `path`, which can be shared, through `row` or the current one; in simple mode through
    /// all of them, now and when the network comes.
    void share(const QString &path, ServerRow *row = nullptr);

    /// Removes a row. Its address stays without one until `loadLocal`, in later runs too.
    void remove(ServerRow *row);

    /// Brings the rows in line with the device's addresses, those that were removed included.
    void loadLocal();

    /// Does so when an address came or went, without those. While servers run, a new address is
    /// served too. One that is back goes on as it was, with its count of traffic.
    void lookForChanges() { network.lookForChanges(); }

    /// A profile has another name; rows are saved by it.
    void followRename(const QString &from, const QString &to);

    /// Stops all servers, saves the rows and lets them go. False when they can't be written.
    bool end();

Q_SIGNALS:
    void loaded(); ///< by `loadLocal`
    void onlineChanged(bool online);

    /// What became of a row whose address came or went, or of its certificate, translated. Nobody
    /// has asked for it, so that it is no cause for a box.
    void told(const QString &text);

private:
    void followNetwork();
    void dropVanished();
    void addFound();
    SavedRow savedStateOf(const ServerRow *row, const QList<SavedRow> &kept);
    SavedRow stateOfAll(const ServerRow *newest, const SavedRow &itsOwn);
    SavedRow fromFile(SavedRow row);
    void restoreAddedPorts(const ServerRow *first, const QList<SavedRow> &kept);
    void restore(ServerRow *row, const SavedRow &state);
    void takeOver(ServerRow *row, const SavedRow &state);
    void startUnasked(ServerRow *row);
    void followChanges();
    void saveSoon();
    void saveNow();
    void saveRows();

    Profiles *profiles;
    StatusSink *sink;
    NotingSink warnings; ///< those of the rows
    DeviceNetwork network;
    SavedRows saved;
    std::optional<SavedRow> single; ///< simple mode: what the next row takes over
    QStringList removed; ///< addresses whose rows the user has removed
    QMap<QString, SavedRow> removedStates; ///< of those removed in this run, as they were
    QTimer saveTimer;
    bool isFollowing = true; ///< what changes now is not the user's choice
    bool hasBegun = false; ///< with what was saved; from now on the network decides
    bool saveFailed = false; ///< and was told
    QList<ServerRow *> resumed; ///< rows that are to run as they did
    QList<ServerRow *> joining; ///< rows that are to run when others do
    ServerRows m_rows;
    CertificateRenewal renewal{ &m_rows, &warnings };
};
