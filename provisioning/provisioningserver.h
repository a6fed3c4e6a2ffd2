// SPDX-License-Identifier: GPL-2.0-or-later
// The Wi-Fi provisioning servers: a command port and a status port, open for a limited time behind a PIN.
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHostAddress>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <array>

class QTcpServer;
class QTcpSocket;
class QThread;
class WifiObject;

struct ProvisioningSettings
{
    // The servers listen on this address only, which must belong to the
    // named interface (or, for "lo", be a loopback address).
    QString interfaceName;
    QHostAddress address;
    quint16 commandPort = 0; // 0: any free port (tests)
    quint16 statusPort = 0;
    int windowMs = 5 * 60 * 1000;
    int idleMs = 30 * 1000;
    int maxPinFailures = 3;
};

// Sockets live in the owner's thread and never block; every wpa_cli run
// happens in one of two worker threads (one per port), each owning a
// WifiObject with its own wirelessutil.
class ProvisioningServer : public QObject
{
    Q_OBJECT

public:
    enum Port { CommandPort = 0, StatusPort = 1 };
    enum StopReason { StopRequested, StopTimeUp, StopTooManyPins };

    explicit ProvisioningServer(QObject *parent = nullptr);
    ~ProvisioningServer() override;

    // Opens both ports for settings.windowMs with a new PIN. False, with a
    // reason, when the address is not the interface's or a port is taken.
    bool start(const ProvisioningSettings &settings, QString *error = nullptr);
    void stop();

    bool isRunning() const { return m_running; }
    QByteArray pin() const { return m_pin; }
    int secondsLeft() const;
    quint16 port(Port which) const;

    // Whether the address is one the servers may listen on.
    static bool addressAllowed(const QString &interfaceName, const QHostAddress &address);

signals:
    void stopped(int reason);
    // What a client did to the saved networks (verb of provisioningprotocol::Verb).
    void networkChanged(int verb, const QString &ssid, bool succeeded);

private:
    struct Session
    {
        QPointer<QTcpSocket> socket;
        QByteArray buffer;
        bool authenticated = false;
        bool busy = false;
        quint64 ticket = 0;
        QTimer idle;
    };

    struct Endpoint
    {
        QTcpServer *server = nullptr;
        QThread *thread = nullptr;
        WifiObject *wifi = nullptr;
        Session session;
    };

    void stopFor(StopReason reason);
    void acceptConnection(Port which);
    void readLines(Port which);
    void handleLine(Port which, const QByteArray &line);
    void commandFinished(Port which, quint64 ticket, const QByteArray &reply);
    void send(Port which, const QByteArray &reply);
    void closeSession(Port which, const QByteArray &lastReply = QByteArray());
    void log(const QString &text) const;

    std::array<Endpoint, 2> m_endpoints;
    ProvisioningSettings m_settings;
    QByteArray m_pin;
    bool m_running = false;
    int m_pinFailures = 0;
    quint64 m_nextTicket = 0;
    QTimer m_window;
    QDeadlineTimer m_deadline;
};
