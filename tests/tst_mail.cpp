// SPDX-License-Identifier: GPL-2.0-or-later
// The report mailer against real SMTP servers on loopback: deliveries read back with a MIME parser, and failures.
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
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <memory>

namespace {

const QString kPython = QStringLiteral("/usr/bin/python3");
// The certificates below are made for this address.
const QString kAddress = QStringLiteral("127.0.0.25");
const QString kRecipient = QStringLiteral("nurse@clinic.example");
const QString kSender = QStringLiteral("screener@school.example");

// Every stored message as JSON: headers decoded, parser defects, and each leaf
// part with its file name, digest, and its text when it is text.
const char kReadMaildir[] = R"PY(
import email, hashlib, json, os, sys
from email import policy
def leaf(part):
    payload = part.get_payload(decode=True) or b''
    text = part.get_content_maintype() == 'text'
    return {'filename': part.get_filename() or '', 'sha256': hashlib.sha256(payload).hexdigest(),
            'text': payload.decode(part.get_content_charset() or 'ascii') if text else None}
found = []
for folder in ('new', 'cur'):
    for name in sorted(os.listdir(os.path.join(sys.argv[1], folder))):
        with open(os.path.join(sys.argv[1], folder, name), 'rb') as f:
            message = email.message_from_binary_file(f, policy=policy.default)
        entry = {key: str(message[key] or '') for key in ('Subject', 'Date', 'X-RcptTo', 'Message-ID')}
        entry.update(defects=[str(d) for p in message.walk() for d in p.defects],
                     parts=[leaf(p) for p in message.walk() if not p.is_multipart()])
        found.append(entry)
print(json.dumps(found))
)PY";

// What the aiosmtpd command line cannot make: a server that takes one user
// and password, and only after STARTTLS.
const char kLoginServer[] = R"PY(
import signal, ssl, sys
from aiosmtpd.controller import Controller
from aiosmtpd.handlers import Mailbox
from aiosmtpd.smtp import AuthResult, LoginPassword
listen, cert, key, maildir = sys.argv[1:]
def authenticate(server, session, envelope, mechanism, data):
    accepted = isinstance(data, LoginPassword) and (data.login, data.password) == (b'nurse', b's3cret')
    return AuthResult(success=accepted, handled=False)
context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
context.load_cert_chain(cert, key)
host, port = listen.rsplit(':', 1)
Controller(Mailbox(maildir), hostname=host, port=int(port), tls_context=context, require_starttls=True,
           authenticator=authenticate, auth_required=True).start()
signal.pause()
)PY";

quint16 freePort()
{
    QTcpServer probe;
    if (!probe.listen(QHostAddress(kAddress), 0))
        qFatal("cannot listen on %s", qPrintable(kAddress));
    return probe.serverPort();
}

// An aiosmtpd process, stopped with the test.
class SmtpServer
{
public:
    ~SmtpServer()
    {
        m_process.kill();
        m_process.waitForFinished(3000);
    }

    // Empty once the server accepts connections, else what went wrong.
    QString start(const QStringList &arguments)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(kPython, arguments);
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 10000 && m_process.waitForStarted(5000)) {
            QTcpSocket probe;
            probe.connectToHost(kAddress, port);
            if (probe.waitForConnected(200))
                return QString();
            QTest::qWait(100);
        }
        return QStringLiteral("the server did not start: %1").arg(QString::fromUtf8(m_process.readAll()));
    }

    const quint16 port = freePort();

private:
    QProcess m_process;
};

QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
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

class TestMail : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    QTemporaryDir m_shared;
    bool m_bHaveAiosmtpd = false;
    QString m_cert;
    QString m_otherCert;
    // Started once: "plain", "tls" (encrypted from the start) and "login"
    // (STARTTLS, then nurse:s3cret), all storing into one maildir.
    std::map<QString, std::unique_ptr<SmtpServer>> m_servers;

    QString path(const QString &name) const { return m_shared.filePath(name); }
    QString maildir() const { return m_shared.filePath(QStringLiteral("mail")); }

    // The certificate's path; its key is beside it.
    QString makeCertificate(const QString &name)
    {
        const QString cert = path(name + QStringLiteral(".pem"));
        QProcess openssl;
        openssl.setProcessChannelMode(QProcess::MergedChannels);
        openssl.start(QStringLiteral("/usr/bin/openssl"),
                      {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1", "-subj", "/CN=" + kAddress,
                       "-addext", "subjectAltName=IP:" + kAddress, "-keyout", path(name + ".key"), "-out", cert});
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

    // The device points at the named server ("closed": nothing listens).
    void pointAt(const QString &server, const QString &security, const QString &login)
    {
        Platform &platform = Platform::instance();
        platform.mailServer = kAddress;
        platform.mailPort = server == QLatin1String("closed") ? freePort() : m_servers.at(server)->port;
        platform.mailSecurity = security;
        platform.mailSender = kSender;
        platform.mailCaFile = m_cert;
        platform.mailUser = login.section(QLatin1Char(':'), 0, 0);
        platform.mailPassword = login.section(QLatin1Char(':'), 1);
    }

    // A finished test of a child whose name needs more than ASCII.
    void zoesTest()
    {
        GData &data = *m_data;
        data.m_strName = QStringLiteral("Zoë O'Neil");
        data.m_strTestTime = QStringLiteral("2024-03-05 10:15");
        data.m_strODSphere = QStringLiteral("-0.50");
        data.m_strODCylinder = QStringLiteral("-0.75");
        data.m_strODAxis = QStringLiteral("85");
        data.m_strResult = QStringLiteral("Refer");
        data.m_strTimeZone = QStringLiteral("5.5");
        systemclock::setSourceForTesting(
            [] { return QDateTime(QDate(2024, 3, 5), QTime(4, 45, 30), Qt::UTC).toMSecsSinceEpoch(); });
        m_device->writeFile(QStringLiteral("pupil_video.avi"), awkwardRecording());
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
        m_cert = makeCertificate(QStringLiteral("server"));
        m_otherCert = makeCertificate(QStringLiteral("other"));
        for (const auto &[name, text] :
             {std::make_pair("readmaildir.py", kReadMaildir), std::make_pair("login.py", kLoginServer)}) {
            QFile file(path(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
        }
        const QString key = path(QStringLiteral("server.key"));
        for (const QString name : {"plain", "tls", "login"}) {
            auto server = std::make_unique<SmtpServer>();
            const QString listen = QStringLiteral("%1:%2").arg(kAddress).arg(server->port);
            QStringList arguments{"-m", "aiosmtpd", "-n", "-c", "aiosmtpd.handlers.Mailbox", "-l", listen};
            if (name == QLatin1String("tls"))
                arguments += {"--smtpscert", m_cert, "--smtpskey", key};
            else if (name == QLatin1String("login"))
                arguments = QStringList{path(QStringLiteral("login.py")), listen, m_cert, key};
            const QString failure = server->start(arguments << maildir());
            QVERIFY2(failure.isEmpty(), qPrintable(failure));
            m_servers[name] = std::move(server);
        }
    }

    void init()
    {
        for (const char *folder : {"/new", "/cur"}) {
            QDir(maildir() + QLatin1String(folder)).removeRecursively();
            QDir().mkpath(maildir() + QLatin1String(folder));
        }
        setUp();
        m_data->m_pCamCfg->setValue(CamCfg::EmailReporting, QStringLiteral("1"));
        m_data->m_pCamCfg->setValue(CamCfg::EmailAddress, kRecipient);
    }

    void cleanup()
    {
        tearDown();
    }

    void cleanupTestCase()
    {
        m_servers.clear();
    }

    // --- deliveries, read back with a MIME parser ---

    void deliveredWhole_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("security");
        QTest::addColumn<QString>("login");
        QTest::addColumn<bool>("history"); // the history export, else the test's video report
        QTest::newRow("plain, video report") << "plain"
                                             << "none"
                                             << "" << false;
        QTest::newRow("STARTTLS and login, video report") << "login"
                                                          << "starttls"
                                                          << "nurse:s3cret" << false;
        QTest::newRow("TLS, history export to two") << "tls"
                                                    << "tls"
                                                    << "" << true;
    }

    void deliveredWhole()
    {
        REQUIRE_AIOSMTPD();
        QFETCH(QString, server);
        QFETCH(QString, security);
        QFETCH(QString, login);
        QFETCH(bool, history);
        pointAt(server, security, login);
        zoesTest();
        QString subject = QString::fromUtf8("Vision screening of Zoë O'Neil: Refer");
        QString recipients = kRecipient;
        QString fileName = QStringLiteral("Zo__O_Neil_202403051015.avi");
        QByteArray attached = awkwardRecording();
        QString body = QStringLiteral("Right eye (OD): sphere -0.50, cylinder -0.75, axis 85");
        if (history) {
            // One long line, as the history page writes it, with a line of its
            // own that would end the message if it went out unescaped.
            attached = "<table border=\"1\"><tr><td>Name</td><td>Sex</td></tr>";
            for (int row = 0; row < 60; ++row)
                attached += QStringLiteral("<tr><td>李小龙 %1</td><td>Male</td></tr>").arg(row).toUtf8();
            attached += "\n.\n</table>";
            fileName = QStringLiteral("Records_20240305101530.html");
            m_device->writeFile(fileName, attached);
            m_data->m_strReportFile = m_device->root() + QLatin1Char('/') + fileName;
            m_data->m_pCamCfg->setValue(CamCfg::EmailAddress, kRecipient + QStringLiteral("; office@clinic.example"));
            recipients += QStringLiteral(", office@clinic.example");
            subject = QStringLiteral("Vision screening records");
            body = QString::fromUtf8(attached);
        }
        const QString status = history ? m_data->smtpSendReport() : m_data->smtpSendVideoReport();
        QVERIFY2(status.isEmpty(), qPrintable(status));

        const QJsonArray messages = received();
        QCOMPARE(messages.size(), 1);
        const QJsonObject message = messages.at(0).toObject();
        QCOMPARE(message.value("defects").toArray(), QJsonArray());
        QCOMPARE(message.value("X-RcptTo").toString(), recipients);
        QCOMPARE(message.value("Subject").toString(), subject);
        // Stamped with the device's clock in its own zone, not the host's.
        QCOMPARE(message.value("Date").toString(), QStringLiteral("Tue, 05 Mar 2024 10:15:30 +0530"));
        // Large providers refuse mail without one.
        QVERIFY(QRegularExpression(QStringLiteral("^<[0-9a-f-]{36}@\\S+>$")).match(message.value("Message-ID").toString()).hasMatch());
        const QJsonArray parts = message.value("parts").toArray();
        QCOMPARE(parts.size(), 2);
        QVERIFY2(parts.at(0).toObject().value("text").toString().contains(body), qPrintable(body));
        QCOMPARE(parts.at(1).toObject().value("filename").toString(), fileName);
        QCOMPARE(parts.at(1).toObject().value("sha256").toString(), sha256(attached));
    }

    // --- failures: each says what went wrong, and nothing is sent ---

    void failureIsNamed_data()
    {
        QTest::addColumn<QString>("server"); // as for pointAt()
        QTest::addColumn<QString>("security");
        QTest::addColumn<QString>("login"); // user:password, or "other CA" to trust another certificate
        QTest::addColumn<QString>("recipients");
        QTest::addColumn<QStringList>("named");
        const auto row = [](const char *name, const char *server, const char *security, const char *login,
                            const QString &recipients, const QStringList &named) {
            QTest::newRow(name) << server << security << login << recipients << named;
        };
        row("server down", "closed", "none", "", kRecipient, {"cannot be reached", kAddress});
        row("untrusted certificate", "login", "starttls", "other CA", kRecipient, {"encrypted connection"});
        row("wrong password", "login", "starttls", "nurse:wrong", kRecipient, {"user name or password"});
        row("no login", "login", "starttls", "", kRecipient, {"refused mail from", "530"});
        // A server without encryption is not used in the clear instead.
        row("no STARTTLS offered", "plain", "starttls", "", kRecipient, {"does not offer"});
        row("unknown security word", "plain", "ssl", "", kRecipient, {"\"ssl\""});
        row("the settings' placeholder", "plain", "none", "", "Please Input Email", {"No recipient address is set"});
        row("a header smuggled in", "plain", "none", "", kRecipient + "\r\nBcc: spy@elsewhere.example", {"Bcc:"});
        row("an address that ends the SMTP command", "plain", "none", "", kRecipient + ">NOTIFY=NEVER", {"NOTIFY"});
    }

    void failureIsNamed()
    {
        REQUIRE_AIOSMTPD();
        QFETCH(QString, server);
        QFETCH(QString, security);
        QFETCH(QString, login);
        QFETCH(QString, recipients);
        QFETCH(QStringList, named);
        const bool otherCa = login == QLatin1String("other CA");
        pointAt(server, security, otherCa ? QString() : login);
        if (otherCa)
            Platform::instance().mailCaFile = m_otherCert;
        m_data->m_pCamCfg->setValue(CamCfg::EmailAddress, recipients);
        zoesTest();
        const QString status = m_data->smtpSendVideoReport();
        for (const QString &word : named)
            QVERIFY2(status.contains(word), qPrintable(status));
        QCOMPARE(received().size(), 0);
    }

    // A server that takes the connection and never says a word must not hold
    // the device past the time-out.
    void silentServerIsGivenUpInTime()
    {
        QTcpServer quiet;
        QVERIFY(quiet.listen(QHostAddress(kAddress)));
        Mailer::Account from;
        from.host = kAddress;
        from.port = quiet.serverPort();
        from.security = Mailer::Security::None;
        from.sender = kSender;
        Mailer mailer(from);
        mailer.setTimeouts(1500, 1500);
        Mailer::Message message;
        message.recipients = kRecipient;
        QElapsedTimer elapsed;
        elapsed.start();
        const QString status = mailer.send(message);
        QVERIFY2(status.contains(QLatin1String("did not answer")), qPrintable(status));
        QVERIFY2(elapsed.elapsed() >= 1400 && elapsed.elapsed() < 4500, qPrintable(QString::number(elapsed.elapsed())));
    }

    // --- the header text of a name in any script ---

    void headerTextSurvivesEncoding_data()
    {
        QTest::addColumn<QString>("text");
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
