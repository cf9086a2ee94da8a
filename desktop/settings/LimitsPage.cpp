#include "desktop/settings/LimitsPage.h"

#include "desktop/widgets/Fields.h"

#include <QFormLayout>

namespace {

constexpr int mostConnections = 99; // what the toolkit's spin boxes end at
constexpr int highestLimit = 1000000000; // KB
constexpr int shortestLifetime = 60; // seconds
constexpr int longestLifetime = 10000; // seconds

} // namespace

LimitsPage::LimitsPage(Profile *copy)
    : SettingsPage(copy, tr("Server Settings 2"))
{
    auto *connections = new StepField(1, mostConnections);
    bind(connections->spinBox(), &ProfileValues::maxConnections);
    auto *limit = new StepField(0, highestLimit);
    bind(limit->spinBox(), &ProfileValues::dataLimit);
    auto *lifetime = new StepField(shortestLifetime, longestLifetime);
    bind(lifetime->spinBox(), &ProfileValues::sessionLifetime);

    QFormLayout *form = addForm();
    addRow(form, tr("Max. Connections:"), connections, QStringLiteral("connections"));
    addRow(form, tr("Network traffic limit [KB]:"), limit, QStringLiteral("limit"));
    addRow(form, tr("Session lifetime [s]:"), lifetime, QStringLiteral("lifetime"));
}
