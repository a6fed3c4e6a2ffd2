// SPDX-License-Identifier: GPL-2.0-or-later
// The Wi-Fi provisioning servers: a command port and a status port, open for a limited time behind a PIN.
#include "provisioningserver.h"

#include "provisioningpin.h"
#include "provisioningprotocol.h"
#include "threadjoin.h"
#include "wifiobject.h"

#include <QDateTime>
#include <QNetworkInterface>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

namespace {

using provisioningprotocol::Verb;

// A worker busy with a join gives up its wait within this time of being
// cancelled; the rest is one wpa_cli run.
constexpr unsigned long kWorkerStopMs = 5000;
// Input a client may send ahead while its last command runs.
constexpr int kMaxQueuedBytes = 2 * provisioningprotocol::kMaxLineLength;

bool allowedOn(ProvisioningServer::Port port, Verb verb)
{
    switch (verb) {
    case Verb::Pin:
    case Verb::Quit:
    case Verb::Status: return true;
    case Verb::Scan:
    case Verb::List: return port == ProvisioningServer::StatusPort;
    case Verb::Add:
    case Verb::Connect:
    case Verb::Forget: return port == ProvisioningServer::CommandPort;
    }
    return false;
}

} // namespace

ProvisioningServer::ProvisioningServer(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<provisioningprotocol::Command>();
    m_window.setSingleShot(true);
    connect(&m_window, &QTimer::timeout, this, [this] { stopFor(StopTimeUp); });
    for (const Port which : {CommandPort, StatusPort}) {
        Endpoint &endpoint = m_endpoints[which];
        endpoint.server = new QTcpServer(this);
        // One client at a time: the backlog holds nobody, a second client is
        // accepted only to be told "busy".
        endpoint.server->setMaxPendingConnections(1);
        connect(endpoint.server, &QTcpServer::newConnection, this, [this, which] { acceptConnection(which); });
        endpoint.session.idle.setSingleShot(true);
        connect(&endpoint.session.idle, &QTimer::timeout, this, [this, which] {
            log(QStringLiteral("provisioning client idle, closed"));
            closeSession(which, QByteArrayLiteral("E idle\n"));
        });

        endpoint.thread = new QThread(this);
        endpoint.wifi = new WifiObject;
        endpoint.wifi->moveToThread(endpoint.thread);
        connect(endpoint.wifi, &WifiObject::finished, this,
                [this, which](quint64 ticket, const QByteArray &reply) { commandFinished(which, ticket, reply); });
        connect(endpoint.wifi, &WifiObject::networkChanged, this, &ProvisioningServer::networkChanged);
        threadjoin::start(endpoint.thread);
    }
}

ProvisioningServer::~ProvisioningServer()
{
    stopFor(StopRequested);
    for (Endpoint &endpoint : m_endpoints) {
        endpoint.wifi->cancel();
        endpoint.thread->quit();
    }
    for (Endpoint &endpoint : m_endpoints) {
        // A wpa_cli run that hangs past this is left to the process's end
        // rather than freezing the device's shutdown; a worker that ended
        // leaves its object to be deleted here, after the join.
        if (threadjoin::wait(endpoint.thread, kWorkerStopMs))
            delete endpoint.wifi;
        else
            log(QStringLiteral("provisioning worker still busy at exit"));
    }
}

bool ProvisioningServer::addressAllowed(const QString &interfaceName, const QHostAddress &address)
{
    if (address.isNull() || address.isMulticast() || address.isBroadcast() || address == QHostAddress::Any ||
        address == QHostAddress::AnyIPv4 || address == QHostAddress::AnyIPv6)
        return false;
    if (address.isLoopback())
        return interfaceName == QLatin1String("lo");
    const QNetworkInterface interface = QNetworkInterface::interfaceFromName(interfaceName);
    if (!interface.isValid())
        return false;
    const QList<QNetworkAddressEntry> entries = interface.addressEntries();
    return std::any_of(entries.begin(), entries.end(),
                       [&address](const QNetworkAddressEntry &entry) { return entry.ip().isEqual(address); });
}

bool ProvisioningServer::start(const ProvisioningSettings &settings, QString *error)
{
    const auto fail = [this, error](const QString &reason) {
        stopFor(StopRequested);
        if (error)
            *error = reason;
        return false;
    };
    if (m_running)
        stopFor(StopRequested);
    if (!addressAllowed(settings.interfaceName, settings.address))
        return fail(
            QStringLiteral("%1 is not an address of %2").arg(settings.address.toString(), settings.interfaceName));
    if (settings.commandPort != 0 && settings.commandPort == settings.statusPort)
        return fail(QStringLiteral("the command and status ports are the same"));

    m_settings = settings;
    m_running = true;
    if (!m_endpoints[CommandPort].server->listen(settings.address, settings.commandPort))
        return fail(m_endpoints[CommandPort].server->errorString());
    if (!m_endpoints[StatusPort].server->listen(settings.address, settings.statusPort))
        return fail(m_endpoints[StatusPort].server->errorString());

    m_pin = provisioningpin::generate();
    m_pinFailures = 0;
    m_window.start(settings.windowMs);
    m_deadline.setRemainingTime(settings.windowMs);
    log(QStringLiteral("provisioning open on %1 ports %2 and %3 for %4 s")
            .arg(settings.address.toString())
            .arg(port(CommandPort))
            .arg(port(StatusPort))
            .arg(settings.windowMs / 1000));
    return true;
}

void ProvisioningServer::stop()
{
    stopFor(StopRequested);
}

int ProvisioningServer::secondsLeft() const
{
    if (!m_running)
        return 0;
    return static_cast<int>((m_deadline.remainingTime() + 999) / 1000);
}

quint16 ProvisioningServer::port(Port which) const
{
    return m_endpoints[which].server->serverPort();
}

void ProvisioningServer::stopFor(StopReason reason)
{
    if (!m_running)
        return;
    m_running = false;
    m_window.stop();
    for (const Port which : {CommandPort, StatusPort}) {
        m_endpoints[which].server->close();
        closeSession(which, QByteArrayLiteral("E closed\n"));
    }
    // A PIN is good for one opening only.
    m_pin.clear();
    static const char *const kReasons[] = {"closed by the operator", "time is up", "too many wrong PINs"};
    log(QStringLiteral("provisioning %1").arg(QLatin1String(kReasons[reason])));
    emit stopped(reason);
}

void ProvisioningServer::acceptConnection(Port which)
{
    Endpoint &endpoint = m_endpoints[which];
    while (QTcpSocket *socket = endpoint.server->nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        if (!m_running || endpoint.session.socket) {
            socket->write("E busy\n");
            socket->disconnectFromHost();
            continue;
        }
        Session &session = endpoint.session;
        session.socket = socket;
        session.buffer.clear();
        session.authenticated = false;
        session.busy = false;
        session.idle.start(m_settings.idleMs);
        connect(socket, &QTcpSocket::readyRead, this, [this, which] { readLines(which); });
        connect(socket, &QTcpSocket::disconnected, this, [this, which, socket] {
            if (m_endpoints[which].session.socket == socket)
                closeSession(which);
        });
        log(QStringLiteral("provisioning client %1 on the %2 port")
                .arg(socket->peerAddress().toString(),
                     which == CommandPort ? QStringLiteral("command") : QStringLiteral("status")));
    }
}

void ProvisioningServer::readLines(Port which)
{
    Session &session = m_endpoints[which].session;
    if (!session.socket)
        return;
    session.buffer += session.socket->readAll();
    while (session.socket && !session.busy) {
        const int end = session.buffer.indexOf('\n');
        if (end < 0) {
            if (session.buffer.size() >= provisioningprotocol::kMaxLineLength)
                closeSession(which, QByteArrayLiteral("E too-long\n"));
            return;
        }
        const QByteArray line = session.buffer.left(end);
        session.buffer.remove(0, end + 1);
        handleLine(which, line);
    }
    if (session.socket && session.buffer.size() > kMaxQueuedBytes)
        closeSession(which, QByteArrayLiteral("E too-long\n"));
}

void ProvisioningServer::handleLine(Port which, const QByteArray &line)
{
    Session &session = m_endpoints[which].session;
    session.idle.start(m_settings.idleMs);
    const provisioningprotocol::Parsed parsed = provisioningprotocol::parseCommand(line);
    const provisioningprotocol::Error problem = parsed.error;
    const bool pinAttempt = problem == provisioningprotocol::Error::BadPin ||
                            (problem == provisioningprotocol::Error::None && parsed.command.verb == Verb::Pin);

    if (pinAttempt && !session.authenticated) {
        if (problem == provisioningprotocol::Error::None && provisioningpin::matches(parsed.command.pin, m_pin)) {
            session.authenticated = true;
            log(QStringLiteral("provisioning client gave the PIN"));
            send(which, QByteArrayLiteral("OK\n"));
            return;
        }
        ++m_pinFailures;
        log(QStringLiteral("provisioning: wrong PIN (%1 of %2)").arg(m_pinFailures).arg(m_settings.maxPinFailures));
        if (m_pinFailures >= m_settings.maxPinFailures) {
            closeSession(which, QByteArrayLiteral("E locked\n"));
            stopFor(StopTooManyPins);
            return;
        }
        // One guess per connection: a guesser pays a new connection for each.
        closeSession(which, QByteArrayLiteral("E wrong-pin\n"));
        return;
    }
    // Framing errors mean a client that does not speak the protocol at all.
    if (problem == provisioningprotocol::Error::BadCharacter || problem == provisioningprotocol::Error::TooLong) {
        closeSession(which, "E " + provisioningprotocol::errorWord(problem) + '\n');
        return;
    }
    const bool quit = problem == provisioningprotocol::Error::None && parsed.command.verb == Verb::Quit;
    if (!session.authenticated && !quit) {
        closeSession(which, QByteArrayLiteral("E pin-required\n"));
        return;
    }
    if (problem != provisioningprotocol::Error::None) {
        send(which, "E " + provisioningprotocol::errorWord(problem) + '\n');
        return;
    }
    const provisioningprotocol::Command &command = parsed.command;
    if (quit) {
        closeSession(which, QByteArrayLiteral("OK bye\n"));
        return;
    }
    if (command.verb == Verb::Pin) {
        send(which, QByteArrayLiteral("OK\n"));
        return;
    }
    if (!allowedOn(which, command.verb)) {
        send(which, QByteArrayLiteral("E wrong-port\n"));
        return;
    }
    session.busy = true;
    session.ticket = ++m_nextTicket;
    // A join may take its fifteen seconds; the idle clock waits for it.
    session.idle.stop();
    QMetaObject::invokeMethod(m_endpoints[which].wifi, "execute", Qt::QueuedConnection, Q_ARG(quint64, session.ticket),
                              Q_ARG(provisioningprotocol::Command, command));
}

void ProvisioningServer::commandFinished(Port which, quint64 ticket, const QByteArray &reply)
{
    Session &session = m_endpoints[which].session;
    // The client may have gone, or another taken its place, meanwhile.
    if (!session.socket || !session.busy || session.ticket != ticket)
        return;
    session.busy = false;
    session.idle.start(m_settings.idleMs);
    send(which, reply);
    readLines(which);
}

void ProvisioningServer::send(Port which, const QByteArray &reply)
{
    if (QTcpSocket *socket = m_endpoints[which].session.socket)
        socket->write(reply);
}

void ProvisioningServer::closeSession(Port which, const QByteArray &lastReply)
{
    Session &session = m_endpoints[which].session;
    session.idle.stop();
    session.busy = false;
    session.authenticated = false;
    session.buffer.clear();
    QTcpSocket *socket = session.socket;
    session.socket = nullptr;
    if (!socket)
        return;
    socket->disconnect(this);
    if (!lastReply.isEmpty() && socket->state() == QAbstractSocket::ConnectedState)
        socket->write(lastReply);
    socket->disconnectFromHost();
}

void ProvisioningServer::log(const QString &text) const
{
    const QByteArray stamp = QDateTime::currentDateTime().time().toString(QStringLiteral("hh:mm:ss")).toLocal8Bit();
    qDebug("[LOG] %s %s", stamp.constData(), text.toLocal8Bit().constData());
}
