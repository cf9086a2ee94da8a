#pragma once

#include <QObject>
#include <QString>

#include <tuple>

class Profiles;

/// The settings of the global profile that the whole window depends on: simple or expert mode, and
/// the dynamic-DNS name. A part of the rows.
class GlobalMode : public QObject
{
    Q_OBJECT
public:
    /// `choice` is borrowed.
    explicit GlobalMode(const Profiles *choice);

    bool isExpert() const;
    void setExpert(bool on);

    /// Tells when something has changed since the last look.
    void look();

Q_SIGNALS:
    void modeChanged();

    /// The settings of the dynamic-DNS name, or the mode, have changed.
    void dnsWanted();

private:
    using Noticed = std::tuple<qint32, QString, QString, bool>;

    Noticed globalNow() const;

    const Profiles *profiles;
    Noticed noticed;
};
