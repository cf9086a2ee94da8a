#include "desktop/settings/ConfigPageDNS.h"

#include "desktop/widgets/ConfigPageFields.h"

#include <QFormLayout>

ConfigPageDNS::ConfigPageDNS(QWidget *parent)
    : ConfigPage(tr("DNS Settings"), parent)
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
