// SPDX-License-Identifier: GPL-2.0-or-later
// Network time, the zone offset and the power-timer choices, against time servers on loopback.
#include "camcfg.h"
#include "platform.h"
#include "powertimers.h"
#include "systemclock.h"
#include "uitestsupport.h"
#include "zonedlg.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>
#include <vector>

namespace {

constexpr qint64 kYearMs = 365LL * 24 * 3600 * 1000;

// A 48-byte server reply whose transmit timestamp says `ntpSeconds`; every
// other byte is filler that must not be mistaken for it.
QByteArray serverReply(quint32 ntpSeconds)
{
    QByteArray reply(48, char(0xA5));
    for (int i = 0; i < 4; ++i)
        reply[40 + i] = char(ntpSeconds >> (24 - 8 * i));
    return reply;
}

// A UDP server on its own thread that takes one request and answers it with
// the given datagrams, in order; with none it stays silent.
class ScriptedServer
{
public:
    explicit ScriptedServer(const QList<QByteArray> &replies)
    {
        m_fd = ::socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (m_fd < 0 || ::bind(m_fd, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
            ::getsockname(m_fd, reinterpret_cast<sockaddr *>(&address), &length) != 0)
            qFatal("cannot open a loopback UDP socket");
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this, replies] {
            pollfd waiting{m_fd, POLLIN, 0};
            char buffer[512];
            sockaddr_in client{};
            socklen_t size = sizeof client;
            if (::poll(&waiting, 1, 5000) != 1)
                return;
            m_request =
                QByteArray(buffer, int(qMax<ssize_t>(0, ::recvfrom(m_fd, buffer, sizeof buffer, 0,
                                                                   reinterpret_cast<sockaddr *>(&client), &size))));
            // All replies in one call, so that the client finds them pending side by side.
            std::vector<mmsghdr> messages(size_t(replies.size()));
            std::vector<iovec> parts(size_t(replies.size()));
            for (size_t i = 0; i < messages.size(); ++i) {
                parts[i] = {const_cast<char *>(replies[int(i)].constData()), size_t(replies[int(i)].size())};
                messages[i] = mmsghdr{};
                messages[i].msg_hdr = {&client, size, &parts[i], 1, nullptr, 0, 0};
            }
            ::sendmmsg(m_fd, messages.data(), unsigned(messages.size()), 0);
        });
    }
    ~ScriptedServer()
    {
        request();
        ::close(m_fd);
    }
    quint16 port() const { return m_port; }
    // The request received, once the server is done with it.
    QByteArray request()
    {
        if (m_thread.joinable())
            m_thread.join();
        return m_request;
    }

private:
    int m_fd = -1;
    quint16 m_port = 0;
    QByteArray m_request;
    std::thread m_thread;
};

} // namespace

class TestNetworkTime : public QObject, private WindowFixture
{
    Q_OBJECT

private:
    // The device's clock stopped at a known instant, as after the first network time.
    void timeKnown()
    {
        freezeClock();
        m_data->m_bNetworkReady = 1;
    }
    static void pointAt(quint16 port)
    {
        Platform::instance().timeServer = QStringLiteral("127.0.0.1");
        Platform::instance().timePort = port;
    }
    // A year wrong, so that any setting of the clock shows.
    static void skewClock() { systemclock::setOffsetMSecs(-kYearMs); }
    QString saved(int position) const
    {
        return QString::fromUtf8(TestDevice::readFile(m_device->configFile()))
            .split(QLatin1Char('|'))
            .value(position - 1);
    }

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // --- exchanges with scripted servers ---

    void clockFollowsTheServersReply_data()
    {
        QTest::addColumn<QList<QByteArray>>("datagrams");
        QTest::newRow("silent server") << QList<QByteArray>{};
        // Short, the reply's missing bytes count as zero.
        QTest::newRow("five bytes") << QList<QByteArray>{QByteArray("\xF4\xEA\x31\x80\x42", 5)};
        QTest::newRow("the last of several counts")
            << QList<QByteArray>{serverReply(0xE8FE6F80), serverReply(0xF4EA3180)};
    }

    void clockFollowsTheServersReply()
    {
        QFETCH(QList<QByteArray>, datagrams);
        skewClock();
        // The client may wake on the first datagram before the kernel has
        // queued the second; a few exchanges give it the chance to see both.
        // A client that keeps the first datagram fails every one of them.
        const auto clockRight = [] {
            return qAbs(systemclock::nowSecs() - 1900000000) <= 1;
        };
        for (int attempt = 0; attempt < 5 && !clockRight(); ++attempt) {
            ScriptedServer server(datagrams);
            pointAt(server.port());
            QElapsedTimer elapsed;
            elapsed.start();
            m_data->updateTimeFromeWeb();
            QCOMPARE(server.request().left(1), QByteArray("\x1B")); // asked as a version 3 client
            if (datagrams.isEmpty()) {
                // The reply is awaited for 3 s and no longer, and the clock is left alone.
                QVERIFY2(elapsed.elapsed() >= 2900 && elapsed.elapsed() < 6500,
                         qPrintable(QString::number(elapsed.elapsed())));
                QCOMPARE(systemclock::offsetMSecs(), -kYearMs);
                QVERIFY(!m_data->m_bNetworkReady);
                return;
            }
        }
        QVERIFY2(clockRight(), qPrintable(QString::number(systemclock::nowSecs())));
        QVERIFY(m_data->m_bNetworkReady);
    }

    void simulatorTimeServerAnswersTheWindow()
    {
        QProcess server;
        server.start(QStringLiteral(ORVELLA_TIMESERVER), {"--address", "127.0.0.1", "--port", "0"});
        QVERIFY(server.waitForReadyRead(5000));
        const QByteArray listening = server.readLine().trimmed();
        const quint16 port = quint16(listening.mid(listening.lastIndexOf(':') + 1).toUInt());
        // The window asks the simulator's server on a worker until the time is known, then stops.
        pointAt(port);
        skewClock();
        openWindow();
        auto *timer = widget<QTimer>("timerInternetTime");
        QVERIFY(timer->isActive());
        QMetaObject::invokeMethod(m_window.get(), "timerInternetTime", Qt::DirectConnection);
        QTRY_VERIFY_WITH_TIMEOUT(m_data->m_bNetworkReady, 5000);
        const qint64 error = systemclock::nowSecs() - QDateTime::currentSecsSinceEpoch();
        QVERIFY2(qAbs(error) <= 1, qPrintable(QString::number(error)));
        // Known once, the time is not asked for again, by the window nor by
        // the polling thread: a wrong clock stays wrong.
        skewClock();
        QMetaObject::invokeMethod(m_window.get(), "timerInternetTime", Qt::DirectConnection);
        QVERIFY(!timer->isActive());
        m_data->timerInternetTime();
        QCOMPARE(systemclock::offsetMSecs(), -kYearMs);
        server.kill();
        server.waitForFinished(3000);
    }

    // --- time zones ---

    void choosingAZoneIsSavedShownAndShiftsTheLocalTime()
    {
        timeKnown();
        openWindow();
        click("buttonSetup");
        click("buttonTimeZoneSetting");
        ModalResponder zones([](QWidget *dialog) {
            QVERIFY(findWidget<QPushButton>(dialog, "buttonZone0")->isChecked());
            // The list's scroller holds a press back to tell a tap from a
            // drag, so the zone is tapped through the button itself.
            findWidget<QPushButton>(dialog, "buttonZone6")->click();
        });
        click("buttonTimeZone");
        QCOMPARE(m_data->m_strTimeZone, QStringLiteral("5.5"));
        QCOMPARE(saved(CamCfg::TimeZone), QStringLiteral("5.5"));
        QCOMPARE(widget<QPushButton>("buttonTimeZone")->text(), QStringLiteral("UTC+5.5: Indian Standard Time"));
        QCOMPARE(widget<QLabel>("labelTimeZoneTimeValue")->text(), QStringLiteral("2023-11-15 03:43"));
        QCOMPARE(m_data->getLocalTime().toMSecsSinceEpoch() - m_nowMs, 19800 * 1000LL);
        m_data->m_strTimeZone = QStringLiteral("-11");
        QCOMPARE(m_data->getLocalTime().toMSecsSinceEpoch() - m_nowMs, -39600 * 1000LL);
        // A zone that is not in the list is shown as stored.
        QCOMPARE(ZoneDlg::zoneLabel(QStringLiteral("3.5")), QStringLiteral("3.5"));
    }

    // --- power timers ---

    void timerSettingBecomesMinutes_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<int>("minutes");
        QTest::newRow("Never") << "Never" << -1;
        QTest::newRow("1 Minute") << "1 Minute" << 1;
        QTest::newRow("1 Hour") << "1 Hour" << 60;
        QTest::newRow("factory -1") << "-1" << -1;
        QTest::newRow("a number") << "15" << 15;
        QTest::newRow("garbage") << "soon" << -1;
        QTest::newRow("zero would fire at once") << "0" << -1;
    }

    void timerSettingBecomesMinutes()
    {
        QFETCH(QString, setting);
        QFETCH(int, minutes);
        QCOMPARE(powertimers::minutesFromSetting(setting), minutes);
    }

    void neverIsStoredAsTextAndTakesEffect()
    {
        timeKnown();
        openWindow();
        click("buttonSetup");
        click("buttonSleepTimeSetting");
        QCOMPARE(widget<QPushButton>("buttonClockShutdown")->text(), QStringLiteral("Never"));
        {
            ModalResponder never([](QWidget *dialog) {
                QVERIFY(findWidget<QPushButton>(dialog, "buttonNever")->isChecked());
                pressButton(dialog, "buttonNever");
            });
            click("buttonClockShutdown");
        }
        {
            ModalResponder oneMinute([](QWidget *dialog) { pressButton(dialog, "button1M"); });
            click("buttonClockScreen");
        }
        // Stored as text that the start-up reads back, and in force at once.
        QCOMPARE(saved(CamCfg::ScreenOffMinutes), QStringLiteral("1 Minute"));
        QCOMPARE(saved(CamCfg::PowerOffMinutes), QStringLiteral("Never"));
        QCOMPARE(m_data->m_nScreenOffMinutes, 1);
        QCOMPARE(m_data->m_nPowerOffMinutes, -1);
    }
};

QTEST_MAIN(TestNetworkTime)
#include "tst_networktime.moc"
