#include "files/HiddenUploads.h"

#include "files/Path.h"

#include <QCryptographicHash>
#include <QList>
#include <QRandomGenerator>

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

constexpr auto hiddenPrefix = ".receiving-";
constexpr int randomDigits = 6;
constexpr int checkDigits = 6;

QByteArray randomText()
{
    constexpr char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    QByteArray text;
    for (int i = 0; i < randomDigits; ++i)
        text += digits[QRandomGenerator::global()->bounded(int(sizeof digits) - 1)];
    return text;
}

QByteArray checkOf(const QByteArray &id)
{
    return QCryptographicHash::hash(hiddenPrefix + id, QCryptographicHash::Sha1)
        .toHex()
        .left(checkDigits);
}

} // namespace

QByteArray hiddenUploadName()
{
    return hiddenUploadName(randomText());
}

QByteArray hiddenUploadName(const QByteArray &id)
{
    return hiddenPrefix + id + checkOf(id);
}

bool isHiddenUpload(const char *name)
{
    const std::size_t begin = std::strlen(hiddenPrefix);
    if (std::strncmp(name, hiddenPrefix, begin) != 0)
        return false;
    const QByteArray digits(name + begin);
    return digits.size() >= randomDigits + checkDigits
        && digits.endsWith(checkOf(digits.chopped(checkDigits)));
}

bool namesHiddenUpload(const QByteArray &path)
{
    if (!path.contains(hiddenPrefix))
        return false;
    const QList<QByteArray> names = path.split('/');
    return std::any_of(names.begin(), names.end(),
                       [](const QByteArray &name) { return isHiddenUpload(name.constData()); });
}

QByteArray asideName(const QByteArray &name)
{
    const QByteArray end = ".replaced-" + randomText();
    return shortenedName(name, NAME_MAX - int(end.size())) + end;
}
