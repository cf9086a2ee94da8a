#pragma once

#include <QByteArray>
#include <QString>

/// The pieces that the pages of the file manager have in common. All append to `out`.

/// `utf8` as text or attribute value: "<", ">" and the double quote become entities, nothing else.
void addEscaped(QByteArray *out, const QByteArray &utf8);

/// `utf8Path` as the path of a URL, percent-encoded (RFC 3986, section 3.3).
void addEncodedPath(QByteArray *out, const QByteArray &utf8Path);

/// `path` with one slash at its start. Browsers take what follows two for another host.
QByteArray withOneSlash(const QByteArray &path);

/// `utf8Path` as the target of a link to this server, escaped as text is. Only one that browsers
/// would take for another host is percent-encoded.
void addLocalLink(QByteArray *out, const QByteArray &utf8Path);

/// A size in its unit, rounded down.
void addSize(QByteArray *out, qint64 bytes);

/// `text` with "?" for what ASCII does not have.
QByteArray toAscii(const QString &text);

/// The start of every page, as far as the end of its title.
void addHead(QByteArray *out);

/// The start of the body; `picture` puts the background behind it.
void addBody(QByteArray *out, bool picture);

/// The start of a form that posts the hidden field "a" with the value `action`.
void addForm(QByteArray *out, const char *action, const char *name = nullptr);

/// One entry of a select list. The label is translated.
void addOption(QByteArray *out, const char *label, const char *value, bool selected = false);

/// The form that sets the entries per page.
void addInputP(QByteArray *out, int itemsPerPage);

/// A parameter of the applet.
void addParam(QByteArray *out, const char *name, const QByteArray &value);

/// An argument of the launched client.
void addArg(QByteArray *out, const char *name, const QByteArray &value);
