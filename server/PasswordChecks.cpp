#include "server/PasswordChecks.h"

#include "config/Profile.h"
#include "files/DiskJob.h"
#include "files/DiskWorker.h"
#include "server/PasswordHash.h"
#include "server/Secret.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

#include <algorithm>
#include <utility>

/// One check on a thread.
class HashCheck final : public DiskJob
{
public:
    HashCheck(QByteArray givenPassword, QByteArray keptHash)
        : password(std::move(givenPassword))
        , hash(std::move(keptHash))
    {
    }

    bool run(const Budget &until) override
    {
        if (!until.mayBlock())
            return false;
        fits = fitsPasswordHash(password, hash);
        return true;
    }

    const QByteArray password;
    const QByteArray hash;
    std::optional<bool> fits; ///< once it is finished, unless there was no memory
};

PasswordChecks::PasswordChecks(DiskWorker &worker)
    : disk(worker)
    , key(newSecret())
{
}

PasswordChecks::~PasswordChecks() = default;

QByteArray PasswordChecks::hashFor(const Profile &profile, const QByteArray &user)
{
    const QByteArray own = profile.passwordHash(QString::fromUtf8(user));
    return own.isEmpty() && profile.hashesPasswords() ? hashOfNobody() : own;
}

QByteArray PasswordChecks::proof(const QByteArray &password, const QByteArray &hash) const
{
    return QMessageAuthenticationCode::hash(hash + '\n' + password, key,
                                            QCryptographicHash::Sha256);
}

bool PasswordChecks::remembers(const QByteArray &password, const QByteArray &hash,
                               Clock::time_point now)
{
    const auto found = remembered.find(proof(password, hash));
    if (found == remembered.end() || *found < now)
        return false;
    *found = now + memory;
    return true;
}

void PasswordChecks::remember(const QByteArray &found)
{
    if (remembered.size() >= maxRemembered) {
        const auto oldest = std::min_element(remembered.begin(), remembered.end());
        remembered.erase(oldest);
    }
    remembered.insert(found, Clock::now() + memory);
}

void PasswordChecks::check(const QByteArray &password, const QByteArray &hash, QObject *context,
                           Done done)
{
    if (waiting.size() >= std::size_t(maxWaiting))
        return done(Verdict::Busy);
    waiting.push_back({ std::make_shared<HashCheck>(password, hash), context, std::move(done) });
    if (!busy)
        next();
}

void PasswordChecks::next()
{
    while (!waiting.empty() && !waiting.front().context)
        waiting.pop_front();
    busy = !waiting.empty();
    if (!busy)
        return;
    Waiting first = std::move(waiting.front());
    waiting.pop_front();
    const std::shared_ptr<HashCheck> job = first.job;
    disk.runAside(job, this, [this, first = std::move(first)] { finish(first); });
}

void PasswordChecks::finish(const Waiting &checked)
{
    const std::optional<bool> fits = checked.job->fits;
    if (fits == true)
        remember(proof(checked.job->password, checked.job->hash));
    next();
    if (!checked.context)
        return;
    const Verdict known = fits == true ? Verdict::Fits : Verdict::Wrong;
    checked.done(fits ? known : Verdict::Busy);
}
