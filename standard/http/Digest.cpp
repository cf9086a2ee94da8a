#include "standard/http/Digest.h"

#include "server/Secret.h"

#include <QMap>

namespace standard {

namespace {

constexpr auto digestScheme = "digest ";
constexpr auto quality = "auth";
constexpr auto md5Name = "MD5";
constexpr auto sha256Name = "SHA-256";
constexpr int md5Digits = 32; ///< of a proof, hexadecimal

using Parameters = QMap<QByteArray, QByteArray>;

bool separates(char c)
{
    return c == ' ' || c == '\t' || c == ',';
}

/// Takes a quoted text, in which a backslash makes the next character an ordinary one.
QByteArray takeQuoted(const QByteArray &text, int &at)
{
    QByteArray value;
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\' && at + 1 < text.size())
            ++at;
        value += text[at];
    }
    ++at;
    return value;
}

QByteArray takeToken(const QByteArray &text, int &at)
{
    const int begin = at;
    while (at < text.size() && !separates(text[at]) && text[at] != '=')
        ++at;
    return text.mid(begin, at - begin);
}

Parameters parametersOf(const QByteArray &text)
{
    Parameters parameters;
    for (int at = 0; at < text.size();) {
        if (separates(text[at])) {
            ++at;
            continue;
        }
        const QByteArray name = takeToken(text, at).toLower();
        if (at >= text.size() || text[at] != '=')
            return {};
        ++at;
        const bool quoted = at < text.size() && text[at] == '"';
        parameters.insert(name, quoted ? takeQuoted(text, at) : takeToken(text, at));
    }
    return parameters;
}

std::optional<QCryptographicHash::Algorithm> algorithmOf(const Parameters &parameters)
{
    const QByteArray name = parameters.value("algorithm", md5Name).toUpper();
    if (name != md5Name && name != sha256Name)
        return {};
    // One desktop's file manager names SHA-256 when it is offered, and takes MD5 all the same.
    const bool isMd5 = name == md5Name || parameters.value("response").size() == md5Digits;
    return isMd5 ? QCryptographicHash::Md5 : QCryptographicHash::Sha256;
}

} // namespace

std::optional<DigestCredentials> DigestCredentials::parse(const QByteArray &value)
{
    const auto schemeSize = int(qstrlen(digestScheme));
    if (qstrnicmp(value.constData(), digestScheme, uint(schemeSize)) != 0)
        return {};
    const Parameters given = parametersOf(value.mid(schemeSize));
    const auto algorithm = algorithmOf(given);
    bool isNumber = false;
    const quint32 count = given.value("nc").toUInt(&isNumber, 16);
    const bool complete = given.contains("username") && given.contains("realm")
        && given.contains("nonce") && given.contains("uri") && given.contains("cnonce")
        && given.contains("response");
    if (!algorithm || !complete || !isNumber || count == 0 || given.value("qop") != quality)
        return {};
    DigestCredentials credentials;
    credentials.algorithm = *algorithm;
    credentials.user = given.value("username");
    credentials.realm = given.value("realm");
    credentials.nonce = given.value("nonce");
    credentials.uri = given.value("uri");
    credentials.countText = given.value("nc");
    credentials.count = count;
    credentials.clientNonce = given.value("cnonce");
    credentials.response = given.value("response").toLower();
    return credentials;
}

bool DigestCredentials::fits(const QByteArray &method, const QByteArray &password) const
{
    const auto hash = [this](const QByteArray &text) {
        return QCryptographicHash::hash(text, algorithm).toHex();
    };
    const QByteArray secret = hash(user + ':' + realm + ':' + password);
    const QByteArray request = hash(method + ':' + uri);
    return isSameSecret(response,
                        hash(secret + ':' + nonce + ':' + countText + ':' + clientNonce + ':'
                             + quality + ':' + request));
}

} // namespace standard
