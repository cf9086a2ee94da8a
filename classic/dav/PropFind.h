#pragma once

#include "classic/dav/Dav.h"

#include <memory>

struct Resource;

/// PROPFIND: one resource, or the entries of one folder, with a fixed set of properties.
/// What the client asked for is not looked at; there is no recursion.
class PropFind : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "PF";

    explicit PropFind(Request *request);
    ~PropFind() override;

    using Dav::reply;
    void reply(const QFileInfo &shared, Profile *profile) override;

private:
    struct Markup;

    QString requestedPath() const;
    QByteArray requestedPrefix();
    QByteArray baseUrl() const;
    void addDir(const QString &folder, const QByteArray &href);
    void addEntry(const Resource &entry, const QByteArray &href);

    QByteArray body; ///< the document being built
    std::unique_ptr<const Markup> markup;
    bool foldersShown = false;
};
