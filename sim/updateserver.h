// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated update server: the channel's folders per region, the version files and the firmware.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

// Listens in a thread of its own on the loopback address of the deployment's
// update base address. Under "/v2_q200/REGION/" (the four region names) it
// serves "version.txt" (the newest version's description), "versionList.txt"
// (every published version, in the format of firmwareupdate::parseVersionList),
// one description file per version and the firmware files. Doubled slashes
// count as one, as on common web servers. All members may be called from
// any thread.
class UpdateServer
{
public:
    enum class Fault {
        None,
        WrongSize,   // the firmware arrives one byte short
        WrongMd5,    // the descriptions carry another file's digest
        ThreeFields, // descriptions without the digest
        FiveFields,  // descriptions with a field too many
        NoAnswer,    // holds every request for the silence time
        SlowAnswer,  // answers every request after the slow time
    };
    static constexpr int kFaultCount = 7;
    static QString faultName(Fault fault);

    // The firmware of a version is made on first use: a program file is large.
    using Maker = std::function<QByteArray()>;

    UpdateServer();
    ~UpdateServer();
    UpdateServer(const UpdateServer &) = delete;
    UpdateServer &operator=(const UpdateServer &) = delete;

    // `baseUrl` as the device's deployment names it ("http://127.0.0.17:8017/").
    // False when its host is not a loopback address or the port is taken.
    bool start(const QString &baseUrl);
    void stop();
    bool isRunning() const;

    // Adds a version to the list; the first one published is the newest
    // until setNewest says otherwise.
    void publish(const QString &version, Maker firmware, const QString &note = QString());
    void setNewest(const QString &version);
    QString newest() const;
    QStringList versions() const;

    static QString descriptionFile(const QString &version);
    static QString firmwareFile(const QString &version);

    void setFault(Fault fault);
    Fault fault() const;
    void setSilenceMs(int milliseconds);
    void setSlowMs(int milliseconds);

    int requestCount() const;
    // The path and status of the last request, "GET /v2_q200/us/version.txt -> 200".
    QString lastRequest() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
