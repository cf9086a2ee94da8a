#pragma once

#include "desktop/window/DeviceNetwork.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/ServerRows.h"

#include <QObject>

#include <memory>
#include <optional>

class StatusSink;

/// Keeps the server rows in line with the addresses of the device, and what is saved of them with
/// the rows. Made by the main window; the rows are its own and end with it.
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
    bool hasNetwork() const { return !network.addresses().isEmpty(); }

    /// Shares `path`, which can be shared, through `row` or the current one; in simple mode through
    /// all of them, now and when the network comes.
    void share(const QString &path, ServerRow *row = nullptr);

    /// Brings the rows in line with the device's addresses.
    void loadLocal();

    /// Does so when an address came or went.
    void lookForChanges() { network.lookForChanges(); }

    /// Stops all servers, saves the rows and lets them go. False when they can't be written.
    bool end();

Q_SIGNALS:
    void loaded(); ///< by `loadLocal`
    void onlineChanged(bool online);

private:
    void followNetwork();
    void dropVanished();
    void addFound();
    SavedRow savedStateOf(const ServerRow *row, const QList<SavedRow> &kept);
    SavedRow fromFile(int group);
    void restoreAddedPorts(const ServerRow *first, const QList<SavedRow> &kept);
    void saveRows();

    Profiles *profiles;
    StatusSink *sink;
    DeviceNetwork network;
    SavedRows saved;
    std::optional<SavedRow> single; ///< simple mode: what the next row takes over
    ServerRows m_rows;
};
