// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated cloud printing service: checks the signed form, keeps the ticket, answers in JSON.
#include "cloudprintserver.h"

#include "localhttpserver.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDebug>
#include <QHostAddress>

#include <httplib.h>

#include <atomic>
#include <mutex>

namespace {

// What the service and its members share.
const char kMemberCode[] = "3f0c8e21a9d74b56b0e1c7fa25d98e40";
const char kKey[] = "KQBN4RX7";
constexpr qint64 kAllowedClockSkewSeconds = 300;

const char *const kFaultNames[CloudPrintServer::kFaultCount] = {"none", "no answer", "slow answer", "HTTP 500",
                                                                "garbage"};

QString decodeFormValue(QByteArray text)
{
    text.replace('+', ' ');
    return QString::fromUtf8(QByteArray::fromPercentEncoding(text));
}

QString errorObject(int code, const QString &message)
{
    return QStringLiteral("{\"code\":%1,\"msg\":\"%2\",\"data\":null}").arg(code).arg(message);
}

} // namespace

struct CloudPrintServer::Private
{
    LocalHttpServer http;

    mutable std::mutex mutex; // guards everything below but the waits
    Fault fault = Fault::None;
    int silenceMs = 40000;
    int slowMs = 3000;
    Request lastRequest;
    QStringList lastAccepted;
    int accepted = 0;
    std::atomic<int> requests{0};

    bool pause(int milliseconds) { return http.pause(milliseconds); }

    void handle(const httplib::Request &request, httplib::Response &response);
    QString judge(Request &seen);
};

QString CloudPrintServer::faultName(Fault fault)
{
    const int index = static_cast<int>(fault);
    return index >= 0 && index < kFaultCount ? QLatin1String(kFaultNames[index]) : QStringLiteral("?");
}

CloudPrintServer::CloudPrintServer()
    : d(std::make_unique<Private>())
{
}

CloudPrintServer::~CloudPrintServer()
{
    stop();
}

bool CloudPrintServer::start(const QString &hostAndPort)
{
    if (d->http.isRunning())
        return false;
    const QString address = hostAndPort.section(QLatin1Char(':'), 0, 0);
    bool portOk = false;
    const int port = hostAndPort.section(QLatin1Char(':'), 1, 1).toInt(&portOk);
    const QHostAddress host(address);
    if (host.isNull() || !host.isLoopback() || !portOk) {
        qDebug("CloudPrintServer [%s] is not a loopback address and port: not started", qPrintable(hostAndPort));
        return false;
    }
    httplib::Server *server = &d->http.routes();
    server->Post("/apisc/sendMsg", [this](const httplib::Request &request, httplib::Response &response) {
        d->handle(request, response);
    });
    return d->http.start(address, port, "CloudPrintServer");
}

void CloudPrintServer::stop()
{
    d->http.stop();
}

bool CloudPrintServer::isRunning() const
{
    return d->http.isRunning();
}

void CloudPrintServer::setFault(Fault fault)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->fault = fault;
}

CloudPrintServer::Fault CloudPrintServer::fault() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->fault;
}

void CloudPrintServer::setSilenceMs(int milliseconds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->silenceMs = std::max(0, milliseconds);
}

void CloudPrintServer::setSlowMs(int milliseconds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->slowMs = std::max(0, milliseconds);
}

int CloudPrintServer::requestCount() const
{
    return d->requests;
}

CloudPrintServer::Request CloudPrintServer::lastRequest() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->lastRequest;
}

QStringList CloudPrintServer::lastAcceptedPieces() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->lastAccepted;
}

QString CloudPrintServer::Private::judge(Request &seen)
{
    for (const char *name : {"charset", "reqTime", "memberCode", "deviceID", "securityCode", "msgDetail"}) {
        if (!seen.fields.contains(QLatin1String(name)))
            return errorObject(40001, QStringLiteral("missing parameter: %1").arg(QLatin1String(name)));
    }
    if (seen.fields.value(QStringLiteral("memberCode")) != QLatin1String(kMemberCode))
        return errorObject(40005, QStringLiteral("unknown member"));
    bool timeOk = false;
    const qint64 reqTime = seen.fields.value(QStringLiteral("reqTime")).toLongLong(&timeOk);
    if (!timeOk || std::llabs(QDateTime::currentSecsSinceEpoch() - reqTime) > kAllowedClockSkewSeconds)
        return errorObject(40003, QStringLiteral("reqTime expired"));
    const QByteArray signedText =
        (seen.fields.value(QStringLiteral("memberCode")) + seen.fields.value(QStringLiteral("deviceID")) +
         seen.fields.value(QStringLiteral("msgNo")) + seen.fields.value(QStringLiteral("reqTime")) +
         QLatin1String(kKey))
            .toUtf8();
    const QString expected = QString::fromLatin1(QCryptographicHash::hash(signedText, QCryptographicHash::Md5).toHex());
    if (seen.fields.value(QStringLiteral("securityCode")) != expected)
        return errorObject(40002, QStringLiteral("securityCode mismatch"));
    if (seen.fields.value(QStringLiteral("deviceID")) != CloudPrintServer::registeredDeviceId())
        return errorObject(40004, QStringLiteral("device not registered"));
    return QString();
}

void CloudPrintServer::Private::handle(const httplib::Request &request, httplib::Response &response)
{
    ++requests;
    Request seen;
    seen.body = QByteArray::fromStdString(request.body);
    for (const QByteArray &pair : seen.body.split('&')) {
        const int equals = pair.indexOf('=');
        const QString key = decodeFormValue(equals < 0 ? pair : pair.left(equals));
        seen.keys << key;
        if (!seen.fields.contains(key))
            seen.fields.insert(key, equals < 0 ? QString() : decodeFormValue(pair.mid(equals + 1)));
    }
    seen.pieces = seen.fields.value(QStringLiteral("msgDetail")).split(QStringLiteral("<gpCut/>"));
    if (!seen.pieces.isEmpty() && seen.pieces.last().isEmpty())
        seen.pieces.removeLast();

    Fault chosen;
    int silence;
    int slow;
    {
        std::lock_guard<std::mutex> lock(mutex);
        chosen = fault;
        silence = silenceMs;
        slow = slowMs;
    }
    if (chosen == Fault::NoAnswer)
        pause(silence);
    if (chosen == Fault::SlowAnswer)
        pause(slow);

    QString body;
    if (chosen == Fault::ServerError) {
        response.status = 500;
        body = QStringLiteral("Internal Server Error");
    } else if (chosen == Fault::Garbage) {
        body = QStringLiteral("<html><body><h1>502 Bad Gateway</h1>upstream \"code\" unavailable</body></html>");
    } else {
        body = judge(seen);
        if (body.isEmpty()) {
            std::lock_guard<std::mutex> lock(mutex);
            ++accepted;
            body = QStringLiteral("{\"code\":0,\"msg\":\"ok\",\"data\":{\"msgNo\":\"SIM%1\"}}")
                       .arg(accepted, 6, 10, QLatin1Char('0'));
            lastAccepted = seen.pieces;
        }
    }
    response.set_content(body.toStdString(), chosen == Fault::Garbage ? "text/html" : "application/json");
    seen.status = response.status > 0 ? response.status : 200;
    seen.answer = chosen == Fault::None ? body : faultName(chosen) + QStringLiteral(": ") + body;
    qDebug("CloudPrintServer POST /apisc/sendMsg device [%s] pieces [%d] -> [%d] [%s]",
           qPrintable(seen.fields.value(QStringLiteral("deviceID"))), static_cast<int>(seen.pieces.size()), seen.status,
           qPrintable(seen.answer));
    std::lock_guard<std::mutex> lock(mutex);
    lastRequest = seen;
}
