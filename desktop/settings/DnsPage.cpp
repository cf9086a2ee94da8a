#include "desktop/settings/DnsPage.h"

#include "desktop/widgets/Fields.h"

#include <QFormLayout>

DnsPage::DnsPage(Profile *copy)
    : SettingsPage(copy, tr("DNS Settings"))
{
    addCheckBox(tr("Enable DNS Service"), &ProfileValues::dnsEnabled);

    auto *user = new Finger<QLineEdit>;
    bind(user, &ProfileValues::dnsUser);
    auto *password = new PasswordField;
    bind(password->edit(), &ProfileValues::dnsPassword);

    QFormLayout *form = addForm();
    addRow(form, tr("User:"), user);
    addRow(form, tr("Password:"), password);
    addHelpLink(QStringLiteral("dns"));
}
