#pragma once

#include <QByteArray>

class Request;
class RequestReader;

/// Turns the head that a reader collected into the record of a connection's request. A value for
/// one call.
class RequestParser
{
public:
    /// `record` is borrowed.
    explicit RequestParser(Request &record)
        : request(record)
    {
    }

    /// Parses the head. False when its first line is shorter than 3 bytes: the connection is to be
    /// dropped. A method that is not known leaves `Request::methodCode` None. A server of a
    /// `singleFile` knows only GET and POST.
    bool parse(RequestReader &reader, bool singleFile);

    /// Takes over the header lines of the head's rest, see `RequestReader::restLines`.
    void parseRest(const RequestReader &reader);

    /// Of a parsed request; empty when it is not known.
    static QByteArray methodName(const Request &request);

private:
    void startFresh();
    bool parseMethod(QByteArray &line, bool singleFile);
    void parseTargetOf(const QByteArray &encoded);
    void parseHeaderLine(const QByteArray &line);
    bool parseCommonHeader(const QByteArray &line);
    void parseBodyHeader(const QByteArray &line);
    void parseRange(const QByteArray &value);
    void parseCredentials(const QByteArray &value);

    Request &request;
    bool lengthDeclared = false;
};
