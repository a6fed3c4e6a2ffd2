// SPDX-License-Identifier: GPL-2.0-or-later
// The blocking HTTP helpers against real local servers, and the choice of the device's hardware address.
#include "common.h"
#include "gdata.h"
#include "macaddress.h"
#include "testsupport.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <httplib.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>

#include <unistd.h>

namespace {

enum class Helper { Get, Post, Json, File, DataGet };
enum class Failure { Refused, Silent, MissingFile };

// Every answer carries UTF-8 text, which the helpers must decode as such.
const std::string kUtf8 = "A\xc3\xb1o \xe5\x8c\x97\xe4\xba\xac";
const QByteArray kFormBody = QByteArrayLiteral("name=Ana&sex=1");
const QByteArray kJsonBody = QByteArrayLiteral("{\"name\":\"Ana\",\"sex\":1}");
const QByteArray kFormType = QByteArrayLiteral("application/x-www-form-urlencoded");

#if defined(__SANITIZE_ADDRESS__)
// From the sanitizer runtime; GCC does not install its header.
extern "C" size_t __sanitizer_get_current_allocated_bytes();

// AddressSanitizer keeps freed blocks in quarantine, so the resident set grows
// with every byte that passed through; its allocator's live count is the measure.
qint64 memoryInUse()
{
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
}
#else
qint64 memoryInUse()
{
    std::ifstream statm("/proc/self/statm");
    qint64 pages = 0;
    qint64 resident = 0;
    statm >> pages >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}
#endif

// Whether the client closed its connection to the server within the time.
// Blocking calls only: they work on a thread whose event loop is not running.
bool clientClosed(QTcpServer &server, int milliseconds)
{
    if (!server.hasPendingConnections())
        server.waitForNewConnection(milliseconds);
    QTcpSocket *peer = server.nextPendingConnection();
    return peer && (peer->state() == QAbstractSocket::UnconnectedState || peer->waitForDisconnected(milliseconds));
}

struct SeenRequest
{
    std::string method;
    std::string contentType;
    std::string body;
    std::string form; // ";name=value" per field, ";name@filename" per file
    qint64 fileSize = 0;
    QByteArray fileSha256;
    bool uploadFlagRaised = false;
    qint64 peakMemory = 0;
};

// cpp-httplib on 127.0.0.1 and a free port, remembering the last request it saw.
class TestServer
{
public:
    TestServer()
    {
        m_server.set_keep_alive_timeout(1);
        const auto status = [this](const httplib::Request &request, httplib::Response &response) {
            remember(request);
            response.status = std::stoi(request.matches[1]);
            response.set_content("status " + std::string(request.matches[1]) + " " + kUtf8,
                                 "text/plain; charset=utf-8");
        };
        m_server.Get("/status/(\\d+)", status);
        m_server.Post("/status/(\\d+)", status);
        m_server.Get("/bytes", [](const httplib::Request &, httplib::Response &response) {
            response.set_content(std::string("\x00\xff\xfe\x00 raw", 8), "application/octet-stream");
        });
        // A reply that never ends, as a broken proxy or server can send.
        m_server.Get("/endless", [](const httplib::Request &, httplib::Response &response) {
            response.set_chunked_content_provider("text/plain", [](size_t, httplib::DataSink &sink) {
                const std::string chunk(16 * 1024, 'x');
                return sink.is_writable() && sink.write(chunk.data(), chunk.size());
            });
        });
        m_server.Get("/large", [](const httplib::Request &, httplib::Response &response) {
            response.set_content(std::string(1 << 20, 'y'), "text/plain");
        });
        m_server.Post("/upload",
                      [this](const httplib::Request &request, httplib::Response &response,
                             const httplib::ContentReader &reader) { receiveUpload(request, reader, response); });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }

    ~TestServer()
    {
        m_server.stop();
        m_thread.join();
    }

    QString url(const char *path) const { return QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(path); }
    SeenRequest last() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_last;
    }

private:
    void remember(const httplib::Request &request, SeenRequest seen = SeenRequest())
    {
        seen.method = request.method;
        seen.contentType = request.get_header_value("Content-Type");
        seen.body = request.body;
        std::lock_guard<std::mutex> lock(m_mutex);
        m_last = std::move(seen);
    }

    // Parses the form while it arrives and keeps only a digest of the file,
    // so that the process's memory shows what the client holds.
    void receiveUpload(const httplib::Request &request, const httplib::ContentReader &reader,
                       httplib::Response &response)
    {
        SeenRequest seen;
        seen.uploadFlagRaised = common::uploadInProgress();
        QCryptographicHash hash(QCryptographicHash::Sha256);
        qint64 nextSample = 0;
        bool inFile = false;
        reader(
            [&](const httplib::MultipartFormData &header) {
                inFile = !header.filename.empty();
                seen.form += ";" + header.name + (inFile ? "@" + header.filename : "=");
                return true;
            },
            [&](const char *data, size_t length) {
                if (!inFile) {
                    seen.form.append(data, length);
                    return true;
                }
                seen.fileSize += static_cast<qint64>(length);
                hash.addData(data, static_cast<int>(length));
                if (seen.fileSize >= nextSample) {
                    seen.peakMemory = std::max(seen.peakMemory, memoryInUse());
                    nextSample = seen.fileSize + (1 << 20);
                }
                return true;
            });
        seen.fileSha256 = hash.result();
        seen.peakMemory = std::max(seen.peakMemory, memoryInUse());
        remember(request, std::move(seen));
        response.set_content("stored", "text/plain");
    }

    httplib::Server m_server;
    std::thread m_thread;
    int m_port = 0;
    mutable std::mutex m_mutex;
    SeenRequest m_last;
};

} // namespace

Q_DECLARE_METATYPE(Helper)
Q_DECLARE_METATYPE(Failure)

class TestHttp : public QObject
{
    Q_OBJECT

private:
    TestServer m_server;
    common m_common;
    std::unique_ptr<GData> m_data;
    QTemporaryDir m_dir;
    QString m_uploadFile;
    const QMap<QString, QString> m_fields{{QStringLiteral("sex"), QStringLiteral("1")},
                                          {QStringLiteral("name"), QStringLiteral("Ana")}};

    // The GData variant answers in the buffer, which is handed in holding a marker.
    QString call(Helper helper, const QString &url, int timeoutSeconds, QByteArray *buffer = nullptr)
    {
        switch (helper) {
        case Helper::Get: return m_common.httpGetRequest(url, timeoutSeconds);
        case Helper::Post: return m_common.httpPostRequest(url, kFormBody, timeoutSeconds);
        case Helper::Json: return m_common.httpPostJsonRequest(url, kJsonBody, timeoutSeconds);
        case Helper::File:
            return m_common.httpPostRequestWithFile(url, timeoutSeconds, m_fields, QStringLiteral("video"),
                                                    m_uploadFile);
        case Helper::DataGet:
            return m_data->httpGetRequest(url, timeoutSeconds, *buffer) ? QString::fromUtf8(*buffer) : QString();
        }
        return QString();
    }

    bool managersLeft() const { return !m_common.findChildren<QNetworkAccessManager *>().isEmpty(); }

private slots:
    void initTestCase()
    {
        m_data = std::make_unique<GData>(nullptr, makeSimulatedDevices());
        QFile file(m_dir.filePath(QStringLiteral("pupil_video.avi")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("RIFF small recording") == 20);
    }

    void init() { m_uploadFile = m_dir.filePath(QStringLiteral("pupil_video.avi")); }

    void noAnswerReturnsEmptyAndLeavesNothingBehind_data()
    {
        QTest::addColumn<Helper>("helper");
        QTest::addColumn<Failure>("failure");
        // The form and JSON posts wait and give up exactly as the GET does.
        for (const auto &[name, helper] : {std::make_pair("get", Helper::Get), std::make_pair("file", Helper::File),
                                           std::make_pair("gdata", Helper::DataGet)}) {
            QTest::addRow("%s, refused", name) << helper << Failure::Refused;
            QTest::addRow("%s, silent server", name) << helper << Failure::Silent;
        }
        QTest::newRow("file, missing") << Helper::File << Failure::MissingFile;
    }

    // A refused connection ends at once; a silent server at the time-out, with
    // the request aborted; a file that cannot be read is not even announced.
    void noAnswerReturnsEmptyAndLeavesNothingBehind()
    {
        QFETCH(Helper, helper);
        QFETCH(Failure, failure);
        const bool silent = failure == Failure::Silent;
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const QString url = QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort());
        if (failure == Failure::Refused)
            server.close();
        if (failure == Failure::MissingFile)
            m_uploadFile = m_dir.filePath(QStringLiteral("missing.avi"));
        QByteArray buffer("untouched");
        QString result = QStringLiteral("not called");
        qint64 elapsed = 0;
        bool closedBeforeDeletion = false;
        bool managerAliveDuringWait = false;
        // Called from a running event loop, as the GUI thread does: reply and
        // manager are deleted only once control is back in that loop, so a
        // connection closed before then was closed by the abort.
        QEventLoop outer;
        QTimer::singleShot(0, &outer, [&] {
            QElapsedTimer clock;
            clock.start();
            result = call(helper, url, silent ? 1 : 10, &buffer);
            elapsed = clock.elapsed();
            closedBeforeDeletion = silent && clientClosed(server, 3000);
            managerAliveDuringWait = helper == Helper::DataGet || managersLeft();
            outer.quit();
        });
        outer.exec();

        QVERIFY(result.isEmpty());
        QCOMPARE(buffer, QByteArray("untouched"));
        QVERIFY(!common::uploadInProgress());
        if (silent) {
            QVERIFY2(elapsed >= 900 && elapsed < 4000, QByteArray::number(elapsed));
            QVERIFY(managerAliveDuringWait);
            QVERIFY(closedBeforeDeletion);
        } else {
            QVERIFY2(elapsed < 5000, "waited for the time-out instead of the refusal");
        }
        QVERIFY(failure != Failure::MissingFile ||
                (!server.hasPendingConnections() && !server.waitForNewConnection(200)));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!managersLeft());
    }

    // Each helper's method, type and body reach the server, and the body of
    // the answer comes back whatever its status.
    void eachHelperSendsItsRequestAndReturnsTheBody_data()
    {
        QTest::addColumn<Helper>("helper");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("method");
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<QByteArray>("sentBody");
        QTest::newRow("get 404") << Helper::Get << 404 << "GET" << kFormType << QByteArray();
        QTest::newRow("post 500") << Helper::Post << 500 << "POST" << kFormType << kFormBody;
        // A refusal with its reason: Qt files 400 and 429 apart from the other 4xx statuses.
        QTest::newRow("post 400") << Helper::Post << 400 << "POST" << kFormType << kFormBody;
        QTest::newRow("file 429") << Helper::File << 429 << "POST"
                                  << QByteArrayLiteral("multipart/form-data; boundary=") << QByteArray();
        QTest::newRow("json 200") << Helper::Json << 200 << "POST" << QByteArrayLiteral("application/json")
                                  << kJsonBody;
        QTest::newRow("gdata 404") << Helper::DataGet << 404 << "GET" << kFormType << QByteArray();
    }

    void eachHelperSendsItsRequestAndReturnsTheBody()
    {
        QFETCH(Helper, helper);
        QFETCH(int, status);
        QFETCH(QString, method);
        QFETCH(QByteArray, contentType);
        QFETCH(QByteArray, sentBody);
        QByteArray buffer("untouched");
        const QString expected = QStringLiteral("status %1 ").arg(status) + QString::fromStdString(kUtf8);
        const QString path = QStringLiteral("/status/%1").arg(status);
        QCOMPARE(call(helper, m_server.url(path.toLatin1().constData()), 5, &buffer), expected);
        if (helper == Helper::DataGet)
            QCOMPARE(buffer, expected.toUtf8());

        const SeenRequest seen = m_server.last();
        QCOMPARE(QString::fromStdString(seen.method), method);
        QVERIFY2(QByteArray::fromStdString(seen.contentType).startsWith(contentType), seen.contentType.c_str());
        if (!sentBody.isNull())
            QCOMPARE(QByteArray::fromStdString(seen.body), sentBody);
        QVERIFY(!managersLeft());
    }

    // Replies are held in memory: one past the limit is abandoned at once
    // rather than read until the time-out.
    void aReplyPastTheLimitIsAbandoned_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("endless") << QStringLiteral("/endless");
        QTest::newRow("one mebibyte") << QStringLiteral("/large");
    }

    void aReplyPastTheLimitIsAbandoned()
    {
        QFETCH(QString, path);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(call(Helper::Get, m_server.url(path.toLatin1().constData()), 20), QString());
        QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!managersLeft());
    }

    void gdataGetKeepsBinaryBodies()
    {
        QByteArray buffer("untouched");
        QVERIFY(m_data->httpGetRequest(m_server.url("/bytes"), 5, buffer));
        QCOMPARE(buffer, QByteArray("\x00\xff\xfe\x00 raw", 8));
    }

    void uploadStreamsFieldsInKeyOrderAndTheFileUnchanged()
    {
        const QMap<QString, QString> fields{
            {QStringLiteral("zeta"), QStringLiteral("last")},
            {QStringLiteral("alpha"), QStringLiteral("first")},
            {QStringLiteral("name"), QString::fromUtf8("Jos\xc3\xa9 N\xc3\xba\xc3\xb1\x65z")}};
        const QString path = m_dir.filePath(QStringLiteral("large.avi"));
        const qint64 size = qint64(50) << 20;
        QCryptographicHash expected(QCryptographicHash::Sha256);
        {
            // Each word holds its own position, so a dropped, repeated or reordered block shows.
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QByteArray block(1 << 20, '\0');
            for (qint64 written = 0; written < size; written += block.size()) {
                auto *words = reinterpret_cast<quint64 *>(block.data());
                for (int i = 0; i < block.size() / 8; ++i)
                    words[i] = quint64(written / 8 + i);
                expected.addData(block);
                QCOMPARE(file.write(block), qint64(block.size()));
            }
        }
        // Qt's network plug-ins and buffers come in with the first request;
        // the baseline is taken after one.
        QCOMPARE(call(Helper::File, m_server.url("/upload"), 10), QStringLiteral("stored"));
        const qint64 baseline = memoryInUse();
        const QString result =
            m_common.httpPostRequestWithFile(m_server.url("/upload"), 20, fields, QStringLiteral("video"), path);
        const qint64 atEnd = memoryInUse();
        QCOMPARE(result, QStringLiteral("stored"));
        QVERIFY(!common::uploadInProgress());

        const SeenRequest seen = m_server.last();
        QVERIFY(seen.uploadFlagRaised);
        QCOMPARE(QString::fromStdString(seen.form), QStringLiteral(";alpha=first;name=") + fields.value("name") +
                                                        QStringLiteral(";zeta=last;video@large.avi"));
        QCOMPARE(seen.fileSize, size);
        QCOMPARE(seen.fileSha256, expected.result());

        const qint64 peakGrowth = std::max(seen.peakMemory, atEnd) - baseline;
        QVERIFY2(peakGrowth < (qint64(20) << 20), QByteArray::number(peakGrowth >> 10) + " KiB more in use");
    }

    // --- hardware address ---

    void macAddressSkipsLoopbackAndKeepsOnlyAFind()
    {
        using macaddress::Interface;
        const Interface lo{QStringLiteral("lo"), QStringLiteral("00:00:00:00:00:00"), true, true, true};
        const Interface cable{QStringLiteral("eth0"), QStringLiteral("11:22:33:44:55:66"), false, false, false};
        // Up but not yet running, as Wi-Fi is while it associates.
        const Interface wlan{QStringLiteral("wlan0"), QStringLiteral("0a:1b:2c:3d:4e:5f"), true, false, false};
        QVector<Interface> present{lo, cable};
        int listings = 0;
        const macaddress::Lister list = [&] {
            ++listings;
            return present;
        };
        const macaddress::LogSink log = [](const QString &) {
        };
        QString cache;
        // Only loopback is up: nothing found, nothing kept, so the next call searches again.
        QCOMPARE(macaddress::lookup(cache, list, log), QString());
        present = {lo, wlan, cable};
        QCOMPARE(macaddress::lookup(cache, list, log), QStringLiteral("0A:1B:2C:3D:4E:5F"));
        QCOMPARE(listings, 2);
        present = {lo};
        QCOMPARE(macaddress::lookup(cache, list, log), QStringLiteral("0A:1B:2C:3D:4E:5F"));
        QCOMPARE(listings, 2);
    }
};

QTEST_GUILESS_MAIN(TestHttp)
#include "tst_http.moc"
