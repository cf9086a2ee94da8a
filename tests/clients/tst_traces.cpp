#include "classic/http/ClassicFace.h"
#include "server/FaceChoice.h"
#include "standard/dav/Routes.h"
#include "standard/http/StandardFace.h"
#include "tests/support/LiveServer.h"

/// One request of a program, and what it needs to hear.
struct Step
{
    QByteArray request; ///< "METHOD target"
    QByteArray fields;
    QByteArray body;
    QByteArray status;
    QList<QByteArray> present;
    QList<QByteArray> absent;
};
Q_DECLARE_METATYPE(Step)

/// Sends what programs send that can't be tried here to a server in mode "auto".
class TestTraces : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void understands_data();
    void understands();
};

namespace {

constexpr auto chunked = "Transfer-Encoding: chunked";
constexpr auto token = "{Lock-Token}";

void takeLine(char mark, const QByteArray &text, Step *step)
{
    switch (mark) {
    case ':':
        step->fields += text + "\r\n";
        break;
    case '|':
        step->body += step->body.isEmpty() ? text : '\n' + text;
        break;
    case '+':
        step->present.append(text);
        break;
    case '-':
        step->absent.append(text);
        break;
    default:
        QFAIL(QByteArray("what is " + text).constData());
    }
}

/// A request goes with the length or the chunks of its body.
RawReply replyTo(const LiveServer &server, const Step &step)
{
    const qint64 size = step.body.size();
    const QByteArray framed = step.fields.contains(chunked)
        ? "\r\n" + QByteArray::number(size, 16) + "\r\n" + step.body + "\r\n0\r\n\r\n"
        : "Content-Length: " + QByteArray::number(size) + "\r\n\r\n" + step.body;
    RawClient client(server.port());
    client.send(step.request + " HTTP/1.1\r\nHost: localhost\r\n" + step.fields + framed);
    const QByteArray all = client.readToEnd();
    const int end = int(all.indexOf("\r\n\r\n"));
    return { all.left(end), all.mid(end + 4) };
}

} // namespace

void TestTraces::understands_data()
{
    QTest::addColumn<QByteArray>("agent");
    QTest::addColumn<QList<Step>>("steps");
    QFile file(QStringLiteral(TRACES));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray name;
    QByteArray agent;
    QList<Step> steps;
    const auto endProgram = [&] {
        if (!steps.isEmpty())
            QTest::newRow(name.constData()) << agent << steps;
        steps.clear();
    };
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().chopped(1);
        const char mark = line.isEmpty() ? '#' : line[0];
        const QByteArray text = line.mid(2);
        if (mark == '=') {
            endProgram();
            name = text.left(text.indexOf(" | "));
            agent = text.mid(text.indexOf(" | ") + 3);
        } else if (mark == '>') {
            steps.append(Step());
            const int arrow = int(text.indexOf(" -> "));
            steps.last().request = text.left(arrow);
            steps.last().status = text.mid(arrow + 4);
        } else if (mark != '#') {
            takeLine(mark, text, &steps.last());
        }
    }
    endProgram();
}

void TestTraces::understands()
{
    QFETCH(const QByteArray, agent);
    QFETCH(const QList<Step>, steps);
    LiveServer server(
        chosenFaces(classicFaces(fileRoutes()),
                    standard::standardFaces(standard::withDav(standard::fileRoutes()))));
    server.addFile(QStringLiteral("note.txt"), "0123456789");
    server.addFile(QStringLiteral("dir/song.mp3"), "music!");
    server.addFile(QStringLiteral("empty"), {});
    server.start();
    QByteArray lockToken;
    for (Step step : steps) {
        step.fields.replace(token, lockToken);
        step.fields += "User-Agent: " + agent + "\r\nConnection: close\r\n";
        const RawReply reply = replyTo(server, step);
        const QByteArray all = reply.head + "\n\n" + reply.body;
        const QByteArray exchange = step.request + '\n' + all;
        QVERIFY2(reply.status().startsWith(step.status), exchange.constData());
        for (const QByteArray &part : std::as_const(step.present))
            QVERIFY2(all.contains(part),
                     QByteArray(part + " is missing:\n" + exchange).constData());
        for (const QByteArray &part : std::as_const(step.absent))
            QVERIFY2(!all.contains(part),
                     QByteArray(part + " stands in:\n" + exchange).constData());
        if (const QByteArray given = reply.header("Lock-Token"); !given.isEmpty())
            lockToken = given;
    }
}

QTEST_GUILESS_MAIN(TestTraces)
#include "tst_traces.moc"
