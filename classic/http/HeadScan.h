#pragma once

#include <QByteArray>

/// What a channel has to know of a request head before anyone parses it: where it ends
/// and how many body bytes follow (RFC 9112, section 6).
struct HeadScan
{
    int end = -1; ///< offset behind the blank line; -1 while that has not arrived
    qint64 contentLength = 0; ///< bytes; 0 when absent or not a number
    bool lengthDeclared = false;
    bool lengthDoubtful = false; ///< not a plain number, absurd, misspelt, or several that differ
    bool strayBreak = false; ///< a CR or LF that does not belong to a pair; readers may disagree
    bool transferEncoding = false;
    bool expectsContinue = false; ///< "Expect: 100-continue" (RFC 9110, section 10.1.1)
};

/// Looks through `bytes`, the start of a request; what follows the blank line is not examined.
HeadScan scanHead(const QByteArray &bytes);

/// Takes one header line (without CR LF) into account. Names match in any case.
void scanHeaderLine(const QByteArray &line, HeadScan &scan);

/// Whether the request in `bytes` can be handled now.
///
/// Methods that begin with "P" wait for a declared body as far as the head buffer may hold it,
/// unless the peer holds it back until it is asked for.
/// `firstLook` is false once an earlier call has seen this head's length. Such a later look is
/// content when the blank line stands in the window that begins 40 bytes before the place where
/// a body of this length would begin; clients that pause inside a short form rely on it.
bool canHandle(const QByteArray &bytes, const HeadScan &scan, bool firstLook);

/// Splits a header line into its value when the name matches, in any case and with any blanks
/// after the colon; a null byte array otherwise. `name` includes the colon.
QByteArray headerValue(const QByteArray &line, const char *name);
