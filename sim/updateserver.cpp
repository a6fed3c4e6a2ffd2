// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated update server: the channel's folders per region, the version files and the firmware.
#include "updateserver.h"

#include "localhttpserver.h"
#include "region.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QHostAddress>
#include <QRegularExpression>
#include <QUrl>

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace {

const char *const kFaultNames[UpdateServer::kFaultCount] = {
    "none", "wrong size", "wrong MD5", "three fields", "five fields", "no answer", "slow answer",
};

bool isRegion(const QString &name)
{
    for (int index : {region::Us, region::India, region::China, region::Philippines}) {
        if (name == QLatin1String(region::forIndex(index).name))
            return true;
    }
    return false;
}

} // namespace

struct UpdateServer::Private
{
    struct Version
    {
        QString name;
        Maker make;
        QString note;
        QByteArray firmware;
        bool made = false;
    };

    LocalHttpServer http;

    mutable std::mutex mutex; // guards everything below but the waits
    std::vector<Version> versions;
    QString newest;
    Fault fault = Fault::None;
    int silenceMs = 100000;
    int slowMs = 3000;
    QString lastRequest;
    std::atomic<int> requests{0};

    bool pause(int milliseconds) { return http.pause(milliseconds); }

    // With the mutex held.
    Version *find(const QString &name)
    {
        for (Version &version : versions) {
            if (version.name == name)
                return &version;
        }
        return nullptr;
    }
    const QByteArray &firmwareOf(Version &version)
    {
        if (!version.made) {
            version.firmware = version.make ? version.make() : QByteArray();
            version.made = true;
        }
        return version.firmware;
    }

    // The body and status for a file of the channel, with the mutex held.
    int answer(const QString &file, QByteArray &body, QByteArray &type);
    QByteArray description(Version &version);
    void handle(const httplib::Request &request, httplib::Response &response);
};

QString UpdateServer::faultName(Fault fault)
{
    const int index = static_cast<int>(fault);
    return index >= 0 && index < kFaultCount ? QLatin1String(kFaultNames[index]) : QStringLiteral("?");
}

QString UpdateServer::descriptionFile(const QString &version)
{
    return QStringLiteral("version_") + version + QStringLiteral(".txt");
}

QString UpdateServer::firmwareFile(const QString &version)
{
    return QStringLiteral("orvella-") + version + QStringLiteral(".bin");
}

UpdateServer::UpdateServer()
    : d(std::make_unique<Private>())
{
}

UpdateServer::~UpdateServer()
{
    stop();
}

bool UpdateServer::start(const QString &baseUrl)
{
    if (d->http.isRunning())
        return false;
    const QUrl url(baseUrl);
    const QHostAddress host(url.host());
    if (host.isNull() || !host.isLoopback()) {
        qDebug("UpdateServer [%s] is not on a loopback address: not started", qPrintable(baseUrl));
        return false;
    }
    const int port = url.port(80);

    httplib::Server *server = &d->http.routes();
    server->Get(".*",
                [this](const httplib::Request &request, httplib::Response &response) { d->handle(request, response); });
    return d->http.start(url.host(), port, "UpdateServer");
}

void UpdateServer::stop()
{
    d->http.stop();
}

bool UpdateServer::isRunning() const
{
    return d->http.isRunning();
}

void UpdateServer::publish(const QString &version, Maker firmware, const QString &note)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    if (Private::Version *known = d->find(version)) {
        *known = Private::Version{version, std::move(firmware), note, QByteArray(), false};
        return;
    }
    d->versions.push_back(Private::Version{version, std::move(firmware), note, QByteArray(), false});
    if (d->newest.isEmpty())
        d->newest = version;
}

void UpdateServer::setNewest(const QString &version)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->newest = version;
}

QString UpdateServer::newest() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->newest;
}

QStringList UpdateServer::versions() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    QStringList names;
    for (const Private::Version &version : d->versions)
        names << version.name;
    return names;
}

void UpdateServer::setFault(Fault fault)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->fault = fault;
}

UpdateServer::Fault UpdateServer::fault() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->fault;
}

void UpdateServer::setSilenceMs(int milliseconds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->silenceMs = std::max(0, milliseconds);
}

void UpdateServer::setSlowMs(int milliseconds)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->slowMs = std::max(0, milliseconds);
}

int UpdateServer::requestCount() const
{
    return d->requests;
}

QString UpdateServer::lastRequest() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->lastRequest;
}

QByteArray UpdateServer::Private::description(Version &version)
{
    const QByteArray &firmware = firmwareOf(version);
    QByteArray digest = QCryptographicHash::hash(firmware, QCryptographicHash::Md5).toHex();
    if (fault == Fault::WrongMd5)
        digest = QCryptographicHash::hash(firmware + "!", QCryptographicHash::Md5).toHex();
    QStringList fields{version.name, firmwareFile(version.name), QString::number(firmware.size()),
                       QString::fromLatin1(digest)};
    if (fault == Fault::ThreeFields)
        fields.removeLast();
    if (fault == Fault::FiveFields)
        fields << QStringLiteral("stable");
    // A line end and a blank as an editor leaves them: the device trims the digest.
    return fields.join(QLatin1Char(';')).toUtf8() + " \n";
}

int UpdateServer::Private::answer(const QString &file, QByteArray &body, QByteArray &type)
{
    type = "text/plain; charset=utf-8";
    if (file == QLatin1String("version.txt")) {
        Version *version = find(newest);
        if (!version)
            return 404;
        body = description(*version);
        return 200;
    }
    if (file == QLatin1String("versionList.txt")) {
        body = "# version\tdescription file\tnote\n";
        for (const Version &version : versions)
            body += (version.name + QLatin1Char('\t') + descriptionFile(version.name) + QLatin1Char('\t') +
                     version.note + QLatin1Char('\n'))
                        .toUtf8();
        return 200;
    }
    for (Version &version : versions) {
        if (file == descriptionFile(version.name)) {
            body = description(version);
            return 200;
        }
        if (file == firmwareFile(version.name)) {
            body = firmwareOf(version);
            if (fault == Fault::WrongSize)
                body.chop(1);
            type = "application/octet-stream";
            return 200;
        }
    }
    return 404;
}

void UpdateServer::Private::handle(const httplib::Request &request, httplib::Response &response)
{
    ++requests;
    QString path = QString::fromStdString(request.path);
    path.replace(QRegularExpression(QStringLiteral("/{2,}")), QStringLiteral("/"));
    const QStringList parts = path.split(QLatin1Char('/'));

    Fault chosen;
    int silence;
    int slow;
    {
        std::lock_guard<std::mutex> lock(mutex);
        chosen = fault;
        silence = silenceMs;
        slow = slowMs;
    }
    if (chosen == Fault::NoAnswer && !pause(silence))
        return;
    if (chosen == Fault::SlowAnswer && !pause(slow))
        return;

    QByteArray body = "no such file";
    QByteArray type = "text/plain";
    int status = 404;
    if (parts.size() == 4 && parts.at(0).isEmpty() && parts.at(1) == QLatin1String("v2_q200") &&
        isRegion(parts.at(2))) {
        std::lock_guard<std::mutex> lock(mutex);
        status = answer(parts.at(3), body, type);
        if (status == 404)
            body = "no such file";
    }
    response.status = status;
    response.set_content(body.constData(), static_cast<size_t>(body.size()), type.constData());
    const QString line = QStringLiteral("GET %1 -> %2 (%3 bytes)").arg(path).arg(status).arg(body.size());
    qDebug("UpdateServer %s", qPrintable(line));
    std::lock_guard<std::mutex> lock(mutex);
    lastRequest = line;
}
