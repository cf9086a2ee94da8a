#include "server/LoginSessions.h"

#include "config/Profile.h"
#include "server/Secret.h"

#include <QMessageAuthenticationCode>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {

QByteArray newNumber()
{
    std::array<quint32, 4> random;
    QRandomGenerator::system()->fillRange(random.data(), int(random.size()));
    QByteArray text;
    for (const quint32 part : random)
        text += QByteArray::number(part, 16).rightJustified(8, '0');
    return text;
}

/// All that is kept of a password: as text, or its hash.
QByteArray keptPassword(const ProfileValues &profile, const QByteArray &account)
{
    if (profile.authMode == AuthPasswordPage)
        return profile.password.toUtf8();
    QByteArray kept;
    for (const QString &user : profile.users) {
        if (profile.authMode == AuthBasic && !account.isEmpty()
            && accountName(user) == QString::fromUtf8(account))
            kept += user.toUtf8() + '\n';
    }
    return kept;
}

} // namespace

LoginSessions::Use::Use(LoginSessions &usedTable, QByteArray usedKey, QByteArray user)
    : table(usedTable)
    , key(std::move(usedKey))
    , name(std::move(user))
{
}

LoginSessions::Use::~Use()
{
    table.release(key);
}

LoginSessions::LoginSessions()
    : secret(newSecret())
{
}

/// To compare those takes no time that would tell anything of the numbers.
QByteArray LoginSessions::keyOf(const QByteArray &number) const
{
    return QMessageAuthenticationCode::hash(number, secret, QCryptographicHash::Sha256);
}

QByteArray LoginSessions::markOf(const ProfileValues &profile, const QByteArray &account) const
{
    const QByteArray kept = keptPassword(profile, account);
    return kept.isEmpty() ? QByteArray() : keyOf(QByteArray::number(profile.authMode) + kept);
}

QByteArray LoginSessions::begin(const QByteArray &account, const QByteArray &mark,
                                Clock::time_point now)
{
    makeRoom(account);
    QByteArray number = newNumber();
    idle.push_back({ keyOf(number), account, mark, now });
    places.insert(idle.back().key, std::prev(idle.end()));
    return number;
}

/// One account may not log out all others. Without names nobody can tell whose they are.
void LoginSessions::makeRoom(const QByteArray &account)
{
    const auto isHis = [&account](const Session &session) { return session.account == account; };
    const auto his = std::find_if(idle.begin(), idle.end(), isHis);
    const bool hasMany = !account.isEmpty() && his != idle.end()
        && std::count_if(idle.begin(), idle.end(), isHis) >= maxOfAccount;
    if (hasMany)
        remove(his);
    else if (places.size() >= maxSessions)
        remove(idle.empty() ? busy.begin() : idle.begin());
}

std::unique_ptr<const LoginSessions::Use>
LoginSessions::use(const QByteArray &number, const ProfileValues &profile, Clock::time_point now)
{
    const std::chrono::seconds lifetime(profile.sessionLifetime);
    while (!idle.empty() && now - idle.front().idleSince > lifetime)
        remove(idle.begin());
    const auto found = places.constFind(keyOf(number));
    if (found == places.constEnd())
        return nullptr;
    const auto session = *found;
    if (session->mark.isEmpty() || session->mark != markOf(profile, session->account)) {
        remove(session);
        return nullptr;
    }
    if (session->uses++ == 0)
        busy.splice(busy.end(), idle, session);
    return std::make_unique<const Use>(*this, session->key, session->account);
}

/// It may have ended meanwhile.
void LoginSessions::release(const QByteArray &key)
{
    const auto found = places.constFind(key);
    if (found == places.constEnd() || --(*found)->uses > 0)
        return;
    (*found)->idleSince = Clock::now();
    idle.splice(idle.end(), busy, *found);
}

void LoginSessions::end(const QByteArray &number)
{
    const auto found = places.constFind(keyOf(number));
    if (found != places.constEnd())
        remove(*found);
}

void LoginSessions::remove(Sessions::iterator session)
{
    places.remove(session->key);
    (session->uses > 0 ? busy : idle).erase(session);
}
