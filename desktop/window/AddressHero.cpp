#include "desktop/window/AddressHero.h"

#include "config/Profile.h"
#include "desktop/settings/KeyMaker.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/window/AddressDialog.h"
#include "desktop/window/ServerRow.h"
#include "server/Authority.h"

#include <QDesktopServices>
#include <QEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QUrl>

#include <algorithm>

namespace {

constexpr double largeFont = 1.5; ///< beside the window's
constexpr double smallFont = 0.8; ///< the same, for a long address in little room
constexpr double fontStep = 0.5; ///< points
constexpr int longestShareName = 300; // pixels

/// What people call the network behind it; empty for something else.
QString wordFor(LinkKind kind)
{
    switch (kind) {
    case LinkKind::Cable:
        return AddressHero::tr("Cable");
    case LinkKind::Wireless:
        return AddressHero::tr("Wi-Fi");
    case LinkKind::Mobile:
        return AddressHero::tr("Mobile network");
    case LinkKind::Vpn:
        return AddressHero::tr("VPN");
    case LinkKind::Container:
        return AddressHero::tr("Containers");
    case LinkKind::Unknown:
        break;
    }
    return {};
}

/// Where other devices come to trust the certificate; none when our authority has not signed it.
std::optional<AddressCard> authorityCard(const ServerRow &row)
{
    const QString fingerprint =
        row.profile()->usesTls() ? authorityFingerprint(row.profile()->publicKeyFile) : QString();
    if (fingerprint.isEmpty())
        return {};
    // Browsers would warn of what is not trusted yet.
    const QString unencrypted = row.url().replace(0, int(qstrlen("https")), QLatin1String("http"));
    return AddressCard{ unencrypted + QLatin1Char('/') + QLatin1String(authorityPagePath),
                        AddressHero::tr("Once on each device: open this page, and install the "
                                        "certificate that it offers if the device shows the same "
                                        "fingerprint of it. Browsers don't warn from then on.")
                            + QLatin1Char('\n') + fingerprint };
}

} // namespace

AddressHero::AddressHero(QWidget *parent)
    : TurningRow(parent)
    , link(new LinkLabel(this))
    , copy(newButton(tr("Copy")))
    , picture(newButton(tr("QR code")))
    , more(newButton({}))
{
    copy->setToolTip(tr("Copy the address"));
    picture->setToolTip(tr("Show the address to a phone's camera"));
    more->setCheckable(true);
    more->setAccessibleName(tr("Further addresses, which others may not reach"));
    more->setToolTip(more->accessibleName());
    layOut();
    enlargeLink();
    connect(link, &QLabel::linkActivated, this,
            [](const QString &url) { QDesktopServices::openUrl(QUrl(url)); });
    connect(copy, &QPushButton::clicked, this, [this] { Q_EMIT copyWanted(link->linkText()); });
    connect(picture, &QPushButton::clicked, this, &AddressHero::showPicture);
    connect(more, &QPushButton::toggled, this, &AddressHero::othersChanged);
    hide();
}

void AddressHero::layOut()
{
    auto *buttons = new QWidget;
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    for (QPushButton *button : { copy, picture, more })
        row->addWidget(button);
    row->setStretchFactor(copy, 1);
    row->setStretchFactor(picture, 1);
    add(link, 1);
    add(buttons, 0);
}

void AddressHero::showRows(QList<ServerRow *> running)
{
    QList<QHostAddress> addresses;
    for (const ServerRow *row : std::as_const(running))
        addresses.append(row->address());
    const QList<LinkedAddress> best = bestFirst(linked(addresses));
    places.clear();
    for (const LinkedAddress &each : best) {
        const auto at = std::find_if(running.begin(), running.end(), [&each](const ServerRow *row) {
            return row->address() == each.ip;
        });
        // With the default route it is the way out of a container that this program runs in.
        const bool isWayOut = each.link.kind == LinkKind::Container && each.isReachable();
        places.append({ *at, (*at)->url(), isWayOut ? LinkKind::Unknown : each.link.kind,
                        each.isReachable() });
        running.erase(at);
    }
    setVisible(!places.isEmpty());
    if (places.isEmpty())
        return;
    link->setLink(places.constFirst().url, places.constFirst().url);
    enlargeLink();
    const auto folded = std::count_if(places.begin() + 1, places.end(),
                                      [](const Place &place) { return !place.isReachable; });
    more->setText(QStringLiteral("+%1").arg(folded));
    more->setVisible(folded > 0);
}

QString AddressHero::othersText() const
{
    QString text;
    for (const Place &place : places) {
        const QString word = wordFor(place.kind);
        if (&place == &places.constFirst())
            text += word.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(word);
        else if (place.isReachable || more->isChecked())
            text += QLatin1String("<br>")
                + (word.isEmpty() ? QString() : word + QLatin1String(": ")) + place.url;
    }
    return text;
}

QList<QWidget *> AddressHero::tabOrder() const
{
    return { link, copy, picture, more };
}

void AddressHero::changeEvent(QEvent *event)
{
    TurningRow::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        enlargeLink();
}

void AddressHero::resizeEvent(QResizeEvent *event)
{
    TurningRow::resizeEvent(event);
    enlargeLink();
}

/// As far as the whole address fits in. What the buttons take does not count: they go below it, and
/// would come back beside a smaller one.
void AddressHero::enlargeLink()
{
    QFont large = font();
    large.setBold(true);
    const double usual = large.pointSizeF();
    const auto fits = [&large, this](double size) {
        large.setPointSizeF(size);
        return QFontMetrics(large).horizontalAdvance(link->linkText()) <= width();
    };
    if (usual > 0) {
        double size = usual * largeFont;
        while (!fits(size) && size - fontStep >= usual * smallFont)
            size -= fontStep;
    }
    if (link->font() != large)
        link->setFont(large);
}

void AddressHero::showPicture()
{
    const QPointer<ServerRow> row = places.isEmpty() ? nullptr : places.constFirst().row;
    if (!row)
        return;
    const QFileInfo shared = row->server()->shared();
    const QString name = shared.fileName().isEmpty() ? shared.filePath() : shared.fileName();
    QString facts =
        tr("Shared: %1").arg(fontMetrics().elidedText(name, Qt::ElideMiddle, longestShareName));
    if (row->profile()->usesTls())
        facts += QLatin1Char('\n') + certificateFingerprint(row->profile()->publicKeyFile);
    AddressDialog({ row->url(), facts }, authorityCard(*row), window()).exec();
}
