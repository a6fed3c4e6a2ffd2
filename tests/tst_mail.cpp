// SPDX-License-Identifier: GPL-2.0-or-later
// The report mailer against real SMTP servers on loopback: deliveries read back with a MIME parser, and every failure.
#include "camcfg.h"
#include "gdata.h"
#include "mailer.h"
#include "platform.h"
#include "systemclock.h"
#include "testsupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <tuple>

namespace {

const QString kPython = QStringLiteral("/usr/bin/python3");
// The certificates below are made for this address.
const QString kAddress = QStringLiteral("127.0.0.25");
const QString kRecipient = QStringLiteral("nurse@clinic.example");
const QString kSender = QStringLiteral("screener@school.example");

// Every stored message as JSON: headers decoded, parser defects, and each leaf
// part with its type, file name, digest, and its text when it is text.
const char kReadMaildir[] = R"PY(
import email, hashlib, json, os, sys
from email import policy
headers = {'subject': 'Subject', 'from': 'From', 'date': 'Date', 'envelopeTo': 'X-RcptTo'}
def leaf(part):
    payload = part.get_payload(decode=True) or b''
    text = part.get_content_maintype() == 'text'
    return {'type': part.get_content_type(), 'filename': part.get_filename() or '', 'sha256': hashlib.sha256(payload).hexdigest(),
            'text': payload.decode(part.get_content_charset() or 'ascii') if text else None}
found = []
for folder in ('new', 'cur'):
    path = os.path.join(sys.argv[1], folder)
    for name in sorted(os.listdir(path)) if os.path.isdir(path) else []:
        with open(os.path.join(path, name), 'rb') as f:
            message = email.message_from_binary_file(f, policy=policy.default)
        entry = {key: str(message[header] or '') for key, header in headers.items()}
        entry.update(defects=[str(d) for p in message.walk() for d in p.defects],
                     parts=[leaf(p) for p in message.walk() if not p.is_multipart()])
        found.append(entry)
print(json.dumps(found))
)PY";

// An aiosmtpd server that the command line cannot make: one that refuses
// recipients or the message, stalls on it, or takes a single user and password.
const char kScriptedServer[] = R"PY(
import argparse, asyncio, signal, ssl
from aiosmtpd.controller import Controller
from aiosmtpd.handlers import Mailbox
from aiosmtpd.smtp import AuthResult, LoginPassword
parser = argparse.ArgumentParser()
parser.add_argument('-l', required=True)
for flag in ('--refuse-recipients', '--refuse-data', '--stall-data'):
    parser.add_argument(flag, action='store_true')
for option in ('--login', '--tlscert', '--tlskey'):
    parser.add_argument(option)
parser.add_argument('maildir')
args = parser.parse_args()
host, port = args.l.rsplit(':', 1)

class Handler(Mailbox):
    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if args.refuse_recipients:
            return '550 5.1.1 <%s>: Recipient address rejected: no such mailbox' % address
        envelope.rcpt_tos.append(address)
        return '250 OK'

    async def handle_DATA(self, server, session, envelope):
        if args.refuse_data:
            return '554 5.3.4 Message rejected: no room for it'
        if args.stall_data:
            await asyncio.sleep(60)
        return await super().handle_DATA(server, session, envelope)

def authenticate(server, session, envelope, mechanism, auth_data):
    user, password = args.login.split(':', 1)
    accepted = (isinstance(auth_data, LoginPassword) and auth_data.login == user.encode()
                and auth_data.password == password.encode())
    return AuthResult(success=accepted, handled=False)

options = {}
if args.tlscert:
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(args.tlscert, args.tlskey)
    options.update(tls_context=context, require_starttls=True)
if args.login:
    options.update(authenticator=authenticate, auth_required=True)
Controller(Handler(args.maildir), hostname=host, port=int(port), **options).start()
signal.pause()
)PY";

quint16 freePort()
{
    QTcpServer probe;
    if (!probe.listen(QHostAddress(kAddress), 0))
        qFatal("cannot listen on %s", qPrintable(kAddress));
    return probe.serverPort();
}

// An aiosmtpd process storing into a maildir, stopped with the test. The
// first argument is "script" for the scripted server, else the command
// line's handler is used; the rest are the server's options.
class SmtpServer
{
public:
    ~SmtpServer()
    {
        m_process.kill();
        m_process.waitForFinished(3000);
    }

    // Empty once the server accepts connections, else what went wrong.
    QString start(const QString &maildir, const QString &script, QStringList options)
    {
        const QString listen = QStringLiteral("%1:%2").arg(kAddress).arg(m_port);
        const bool scripted = options.value(0) == QLatin1String("script");
        options =
            (scripted ? QStringList{script} : QStringList{"-m", "aiosmtpd", "-n", "-c", "aiosmtpd.handlers.Mailbox"}) +
            QStringList{"-l", listen} + options.mid(scripted ? 1 : 0) + QStringList{maildir};
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(kPython, options);
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 10000 && m_process.waitForStarted(5000)) {
            QTcpSocket probe;
            probe.connectToHost(kAddress, m_port);
            if (probe.waitForConnected(200))
                return QString();
            QTest::qWait(100);
        }
        return QStringLiteral("the server did not start: %1").arg(QString::fromUtf8(m_process.readAll()));
    }

    quint16 port() const { return m_port; }

private:
    QProcess m_process;
    quint16 m_port = freePort();
};

QByteArray sha256(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

// Bytes that trip up a careless transfer: every byte value, bare line ends,
// and the line that ends an SMTP message.
QByteArray awkwardRecording()
{
    QByteArray bytes("RIFF\0\0\0\0AVI LIST", 16);
    for (int round = 0; round < 600; ++round) {
        for (int value = 0; value < 256; ++value)
            bytes.append(char(value));
        bytes.append("\r\n.\r\n\n.\r\r\n");
    }
    return bytes;
}

} // namespace

class TestMail : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_shared;
    bool m_bHaveAiosmtpd = false;
    QString m_cert;
    QString m_key;
    QString m_otherCert;
    // A plain server for every test that needs nothing special.
    std::unique_ptr<SmtpServer> m_plain;
    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<GData> m_data;

    QString path(const QString &name) const { return m_shared.filePath(name); }
    QString maildir() const { return m_shared.filePath(QStringLiteral("mail")); }

    QString makeCertificate(const QString &name, QString &key)
    {
        key = path(name + QStringLiteral(".key"));
        const QString cert = path(name + QStringLiteral(".pem"));
        QProcess openssl;
        openssl.setProcessChannelMode(QProcess::MergedChannels);
        openssl.start(QStringLiteral("/usr/bin/openssl"),
                      {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1", "-subj", "/CN=" + kAddress,
                       "-addext", "subjectAltName=IP:" + kAddress, "-keyout", key, "-out", cert});
        if (!openssl.waitForFinished(30000) || openssl.exitCode() != 0)
            qFatal("openssl made no certificate: %s", openssl.readAll().constData());
        return cert;
    }

    // What the servers stored, as the parser found it. A parser that fails
    // fails the test.
    QJsonArray received() const
    {
        QProcess parser;
        parser.start(kPython, {path(QStringLiteral("readmaildir.py")), maildir()});
        if (!parser.waitForFinished(10000) || parser.exitCode() != 0) {
            QTest::qFail(parser.readAllStandardError().constData(), __FILE__, __LINE__);
            return QJsonArray{QStringLiteral("unreadable maildir")};
        }
        return QJsonDocument::fromJson(parser.readAllStandardOutput()).array();
    }

    // The plain server, or a new one of the given options ("closed": none).
    quint16 serve(std::unique_ptr<SmtpServer> &own, const QStringList &options)
    {
        if (options.isEmpty())
            return m_plain->port();
        if (options.constFirst() == QLatin1String("closed"))
            return freePort();
        own = std::make_unique<SmtpServer>();
        const QString failure = own->start(maildir(), path(QStringLiteral("server.py")), options);
        if (!failure.isEmpty())
            QTest::qFail(qPrintable(failure), __FILE__, __LINE__);
        return own->port();
    }

    void pointAt(quint16 port, const QString &security)
    {
        Platform &platform = Platform::instance();
        platform.mailServer = kAddress;
        platform.mailPort = port;
        platform.mailSecurity = security;
        platform.mailSender = kSender;
        platform.mailCaFile = m_cert;
    }

    // A finished test of a child whose name needs more than ASCII.
    void zoesTest()
    {
        GData &data = *m_data;
        data.m_strName = QStringLiteral("Zoë O'Neil");
        data.m_nSex = 0;
        data.m_dateBirthday = QDate(2019, 3, 2);
        data.m_strTestTime = QStringLiteral("2024-03-05 10:15");
        data.m_strODSphere = QStringLiteral("-0.50");
        data.m_strODCylinder = QStringLiteral("-0.75");
        data.m_strODAxis = QStringLiteral("85");
        data.m_strOSSphere = QStringLiteral("+2.25");
        data.m_strOSCylinder = QStringLiteral("-1.25");
        data.m_strOSAxis = QStringLiteral("170");
        data.m_strPupilDistance = QStringLiteral("62");
        data.m_strResult = QStringLiteral("Refer");
        data.m_strTimeZone = QStringLiteral("5.5");
        systemclock::setSourceForTesting(
            [] { return QDateTime(QDate(2024, 3, 5), QTime(4, 45, 30), Qt::UTC).toMSecsSinceEpoch(); });
    }

#define REQUIRE_AIOSMTPD()                                                                                             \
    if (!m_bHaveAiosmtpd)                                                                                              \
    QSKIP("python3-aiosmtpd is not installed (scripts/setup installs it)")

private slots:
    void initTestCase()
    {
        QVERIFY(m_shared.isValid());
        QProcess probe;
        probe.start(kPython, {"-c", "import aiosmtpd"});
        m_bHaveAiosmtpd =
            probe.waitForFinished(10000) && probe.exitStatus() == QProcess::NormalExit && probe.exitCode() == 0;
        if (!m_bHaveAiosmtpd)
            return;
        m_cert = makeCertificate(QStringLiteral("server"), m_key);
        QString unusedKey;
        m_otherCert = makeCertificate(QStringLiteral("other"), unusedKey);
        for (const auto &[name, text] :
             {std::make_pair("readmaildir.py", kReadMaildir), std::make_pair("server.py", kScriptedServer)}) {
            QFile file(path(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
        }
        m_plain = std::make_unique<SmtpServer>();
        const QString failure = m_plain->start(maildir(), QString(), {});
        QVERIFY2(failure.isEmpty(), qPrintable(failure));
    }

    void init()
    {
        for (const char *folder : {"/new", "/cur"}) {
            QDir(maildir() + QLatin1String(folder)).removeRecursively();
            QDir().mkpath(maildir() + QLatin1String(folder));
        }
        m_device = std::make_unique<TestDevice>();
        m_data = std::make_unique<GData>(nullptr, makeSimulatedDevices());
        m_data->InitCommonAndConfig();
        m_data->m_pCamCfg->setValue(CamCfg::EmailReporting, QStringLiteral("1"));
        m_data->m_pCamCfg->setValue(CamCfg::EmailAddress, kRecipient);
        if (m_plain)
            pointAt(m_plain->port(), QStringLiteral("none"));
    }

    void cleanup()
    {
        m_data.reset();
        systemclock::setSourceForTesting(nullptr);
        m_device.reset();
    }

    void cleanupTestCase()
    {
        m_plain.reset();
    }

    // --- refused before the server is asked: nothing is sent ---

    void refusedBeforeSending_data()
    {
        QTest::addColumn<QString>("recipients");
        QTest::addColumn<QString>("sender");
        QTest::addColumn<QString>("security");
        QTest::addColumn<QString>("file"); // the recording, or report: the history export
        QTest::addColumn<QString>("named");
        const auto row = [](const char *name, const QString &recipients, const QString &sender, const char *security,
                            const char *file, const char *named) {
            QTest::newRow(name) << recipients << sender << security << file << named;
        };
        row("the settings' placeholder", "Please Input Email", kSender, "none", "good", "\"Please\"");
        row("no recipient", "  ", kSender, "none", "good", "No recipient");
        row("a header smuggled in", kRecipient + "\r\nBcc: spy@elsewhere.example", kSender, "none", "good", "Bcc:");
        row("an address that ends the SMTP command", kRecipient + ">NOTIFY=NEVER", kSender, "none", "good", "NOTIFY");
        row("a sender that is no address", kRecipient, "screener", "none", "good", "sender");
        row("unknown security word", kRecipient, kSender, "ssl", "good", "\"ssl\"");
        row("recording missing", kRecipient, kSender, "none", "missing", "missing");
        row("a folder in the recording's place", kRecipient, kSender, "none", "folder", "cannot be read");
        row("recording empty", kRecipient, kSender, "none", "empty", "empty");
        row("no report", kRecipient, kSender, "none", "report", "no report");
        row("report never written", kRecipient, kSender, "none", "report:missing", "cannot be read");
    }

    void refusedBeforeSending()
    {
        REQUIRE_AIOSMTPD();
        QFETCH(QString, recipients);
        QFETCH(QString, sender);
        QFETCH(QString, security);
        QFETCH(QString, file);
        QFETCH(QString, named);
        m_data->m_pCamCfg->setValue(CamCfg::EmailAddress, recipients);
        Platform::instance().mailSender = sender;
        Platform::instance().mailSecurity = security;
        QString path = Platform::instance().recordingFile;
        if (file == QLatin1String("good"))
            m_device->writeFile(QStringLiteral("pupil_video.avi"), awkwardRecording());
        else if (file == QLatin1String("folder"))
            QVERIFY(QDir().mkpath(path));
        else if (file == QLatin1String("empty"))
            m_device->writeFile(QStringLiteral("pupil_video.avi"), QByteArray());
        else if (file.startsWith(QLatin1String("report")))
            path = m_data->m_strReportFile =
                file.endsWith(QLatin1String("missing")) ? m_device->root() + "/never.html" : "";
        zoesTest();

        const QString status =
            file.startsWith(QLatin1String("report")) ? m_data->smtpSendReport() : m_data->smtpSendVideoReport();
        QVERIFY2(status.contains(named) && (file == QLatin1String("good") || status.contains(path)),
                 qPrintable(status));
        QCOMPARE(received().size(), 0);
    }

    // --- servers that fail: each says what went wrong, within the time-out ---

    void serverFailuresAreNamed_data()
    {
        QTest::addColumn<QStringList>("server"); // empty: the plain one
        QTest::addColumn<int>("security");
        QTest::addColumn<QString>("login"); // user:password, or "other CA" to trust another certificate
        QTest::addColumn<QStringList>("named");
        const auto row = [](const char *name, const QStringList &server, Mailer::Security security, const char *login,
                            const QStringList &named) {
            QTest::newRow(name) << server << int(security) << login << named;
        };
        const Mailer::Security plain = Mailer::Security::None;
        const Mailer::Security startTls = Mailer::Security::StartTls;
        const QStringList tls{"--tlscert", m_cert, "--tlskey", m_key};
        const QStringList login = QStringList{"script", "--login", "nurse:s3cret"} + tls;
        row("unreachable", {"closed"}, plain, "", {"cannot be reached", kAddress});
        row("silent", {"silent"}, plain, "", {"did not answer"});
        row("stalls on the message", {"script", "--stall-data"}, plain, "", {"did not answer"});
        row("refused recipient", {"script", "--refuse-recipients"}, plain, "",
            {"refused the recipient", kRecipient, "550"});
        row("refused message", {"script", "--refuse-data"}, plain, "", {"refused the message", "554", "no room"});
        row("wrong password", login, startTls, "nurse:wrong", {"user name or password"});
        row("no login", login, startTls, "", {"refused mail from", "530"});
        row("untrusted certificate", tls, startTls, "other CA", {"encrypted connection"});
        // A server without encryption is not used in the clear instead.
        row("no STARTTLS offered", {}, startTls, "", {"does not offer"});
    }

    void serverFailuresAreNamed()
    {
        QFETCH(QStringList, server);
        QFETCH(int, security);
        QFETCH(QString, login);
        QFETCH(QStringList, named);
        const bool silent = server == QStringList{"silent"};
        if (!silent && server != QStringList{"closed"})
            REQUIRE_AIOSMTPD();
        // Accepts connections and never says a word.
        QTcpServer quiet;
        QVERIFY(quiet.listen(QHostAddress(kAddress)));
        std::unique_ptr<SmtpServer> own;
        Mailer::Account from;
        from.host = kAddress;
        from.port = silent ? quiet.serverPort() : serve(own, server);
        from.security = Mailer::Security(security);
        from.sender = kSender;
        from.caFile = login == QLatin1String("other CA") ? m_otherCert : m_cert;
        if (!login.isEmpty() && login != QLatin1String("other CA"))
            std::tie(from.user, from.password) = std::make_pair(login.section(':', 0, 0), login.section(':', 1));
        Mailer mailer(from);
        const int timeoutMs = named.constFirst() == QLatin1String("did not answer") ? 1500 : 5000;
        mailer.setTimeouts(timeoutMs, timeoutMs);
        Mailer::Message message;
        message.recipients = kRecipient;
        message.subject = QStringLiteral("Test");
        message.body = QStringLiteral("Hello");

        QElapsedTimer elapsed;
        elapsed.start();
        const QString status = mailer.send(message);
        QVERIFY2(elapsed.elapsed() < timeoutMs + 3000, qPrintable(QString::number(elapsed.elapsed())));
        for (const QString &word : named)
            QVERIFY2(status.contains(word), qPrintable(status));
        if (silent) {
            QVERIFY2(elapsed.elapsed() >= timeoutMs - 100, "gave up before the time-out");
            QVERIFY(quiet.hasPendingConnections() || quiet.waitForNewConnection(0));
        }
        QCOMPARE(received().size(), 0);
    }

    // --- deliveries, read back with a MIME parser ---

    void videoReportArrivesWhole_data()
    {
        QTest::addColumn<QString>("security");
        QTest::addColumn<QStringList>("server");
        QTest::addColumn<QString>("login");
        const auto row = [](const char *name, const char *security, const QStringList &server, const char *login) {
            QTest::newRow(name) << security << server << login;
        };
        const QStringList tls{"--tlscert", m_cert, "--tlskey", m_key};
        row("plain", "none", {}, "");
        row("STARTTLS", "starttls", tls, "");
        row("TLS from the start", "tls", {"--smtpscert", m_cert, "--smtpskey", m_key}, "");
        row("STARTTLS and the right password", "starttls", QStringList{"script", "--login", "nurse:s3cret"} + tls,
            "nurse:s3cret");
    }

    void videoReportArrivesWhole()
    {
        REQUIRE_AIOSMTPD();
        QFETCH(QString, security);
        QFETCH(QStringList, server);
        QFETCH(QString, login);
        std::unique_ptr<SmtpServer> own;
        pointAt(serve(own, server), security);
        Platform::instance().mailUser = login.section(QLatin1Char(':'), 0, 0);
        Platform::instance().mailPassword = login.section(QLatin1Char(':'), 1);
        const QByteArray recording = awkwardRecording();
        m_device->writeFile(QStringLiteral("pupil_video.avi"), recording);
        zoesTest();
        const QString status = m_data->smtpSendVideoReport();
        QVERIFY2(status.isEmpty(), qPrintable(status));

        const QJsonArray messages = received();
        QCOMPARE(messages.size(), 1);
        const QJsonObject message = messages.at(0).toObject();
        QCOMPARE(message.value("defects").toArray(), QJsonArray());
        QCOMPARE(message.value("envelopeTo").toString(), kRecipient);
        QCOMPARE(message.value("from").toString(), kSender);
        QCOMPARE(message.value("subject").toString(), QString::fromUtf8("Vision screening of Zoë O'Neil: Refer"));
        // Stamped with the device's clock in its own zone, not the host's.
        QCOMPARE(message.value("date").toString(), QStringLiteral("Tue, 05 Mar 2024 10:15:30 +0530"));
        const QJsonArray parts = message.value("parts").toArray();
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.at(1).toObject().value("filename").toString(), QStringLiteral("Zo__O_Neil_202403051015.avi"));
        QCOMPARE(parts.at(1).toObject().value("sha256").toString(), QString::fromLatin1(sha256(recording)));
        const QString body = parts.at(0).toObject().value("text").toString();
        for (const char *line :
             {"Name: Zoë O'Neil", "Birthday: 2019-03-02", "Test time: 2024-03-05 10:15",
              "Right eye (OD): sphere -0.50, cylinder -0.75, axis 85",
              "Left eye (OS): sphere +2.25, cylinder -1.25, axis 170", "Pupil distance: 62", "Result: Refer"})
            QVERIFY2(body.contains(QString::fromUtf8(line)), qPrintable(body));
    }

    void historyExportArrivesAsBodyAndAttachment()
    {
        REQUIRE_AIOSMTPD();
        m_data->m_pCamCfg->setValue(CamCfg::EmailAddress, kRecipient + QStringLiteral("; office@clinic.example"));
        // One long line, as the history page writes it, with a line of its own
        // that would end the message if it went out unescaped.
        QByteArray html = "<table border=\"1\"><tr><td>Name</td><td>Sex</td></tr>";
        for (int row = 0; row < 60; ++row)
            html += QStringLiteral("<tr><td>李小龙 %1</td><td>Male</td></tr>").arg(row).toUtf8();
        html += "\n.\n</table>";
        m_device->writeFile(QStringLiteral("Records_20240305101530.html"), html);
        m_data->m_strReportFile = m_device->root() + QStringLiteral("/Records_20240305101530.html");
        const QString status = m_data->smtpSendReport();
        QVERIFY2(status.isEmpty(), qPrintable(status));

        const QJsonArray messages = received();
        QCOMPARE(messages.size(), 1);
        const QJsonObject message = messages.at(0).toObject();
        QCOMPARE(message.value("defects").toArray(), QJsonArray());
        QCOMPARE(message.value("envelopeTo").toString(), kRecipient + QStringLiteral(", office@clinic.example"));
        // The page as the body, and the same page attached.
        const QJsonArray parts = message.value("parts").toArray();
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.at(0).toObject().value("type").toString(), QStringLiteral("text/html"));
        QCOMPARE(parts.at(0).toObject().value("filename").toString(), QString());
        QCOMPARE(parts.at(0).toObject().value("text").toString(), QString::fromUtf8(html));
        QCOMPARE(parts.at(1).toObject().value("filename").toString(), QStringLiteral("Records_20240305101530.html"));
        QCOMPARE(parts.at(1).toObject().value("sha256").toString(), QString::fromLatin1(sha256(html)));
    }

    // --- the header text of a name in any script ---

    void headerTextSurvivesEncoding_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("ASCII stays readable") << "Vision screening of Sam: Pass";
        QTest::newRow("long Chinese name")
            << QString::fromUtf8("视力筛查 欧阳娜娜娜娜娜娜娜娜娜娜娜娜娜娜娜娜娜娜: 转诊");
        QTest::newRow("outside the basic plane") << QString::fromUtf8("😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀 a");
    }

    void headerTextSurvivesEncoding()
    {
        QFETCH(QString, text);
        const QByteArray encoded = Mailer::encodeHeaderText(text + QStringLiteral("\r\nBcc: x@y.example"));
        for (const QByteArray &word : encoded.split(' '))
            QVERIFY2(word.size() <= 75, word.constData());
        QVERIFY(!encoded.contains('\n') && !encoded.contains('\r'));
        // What a mail reader makes of it.
        QProcess python;
        python.start(kPython, {"-c",
                               "import sys, email.header; print(str(email.header.make_header("
                               "email.header.decode_header(sys.argv[1]))), end='')",
                               QString::fromLatin1(encoded)});
        QVERIFY(python.waitForFinished(10000));
        QCOMPARE(QString::fromUtf8(python.readAllStandardOutput()), text + QStringLiteral("  Bcc: x@y.example"));
    }
};

QTEST_MAIN(TestMail)
#include "tst_mail.moc"
