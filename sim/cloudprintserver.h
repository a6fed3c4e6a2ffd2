// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated cloud printing service: checks the signed form, keeps the ticket, answers in JSON.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

// Listens in a thread of its own on a loopback address. A POST of a form to
// "/apisc/sendMsg" is read as the service reads it (split at "&" and "=",
// then URL-decoded), its signature recomputed with the shared key, and
// answered {"code":0,...} when the member, the signature, the request time
// (within five minutes) and the device ID are good; otherwise a JSON error
// object with a code of its own. All members may be called from any thread.
class CloudPrintServer
{
public:
    // The printer registered under the simulated member.
    static QString registeredDeviceId() { return QStringLiteral("ORV-CP-0001"); }

    enum class Fault {
        None,        // answers
        NoAnswer,    // holds the connection for the silence time
        SlowAnswer,  // answers after a few seconds
        ServerError, // HTTP 500
        Garbage,     // HTTP 200 with an HTML error page
    };
    static constexpr int kFaultCount = 5;
    static QString faultName(Fault fault);

    struct Request
    {
        QByteArray body;
        // Every key as the service parsed it, in order; a "&" inside the
        // ticket adds keys of its own.
        QStringList keys;
        QMap<QString, QString> fields;
        // The ticket's pieces, without the mark-up tags.
        QStringList pieces;
        int status = 0;
        QString answer;
    };

    CloudPrintServer();
    ~CloudPrintServer();
    CloudPrintServer(const CloudPrintServer &) = delete;
    CloudPrintServer &operator=(const CloudPrintServer &) = delete;

    // `hostAndPort` as the device's deployment names it: "127.0.0.16:8016".
    bool start(const QString &hostAndPort);
    void stop();
    bool isRunning() const;

    void setFault(Fault fault);
    Fault fault() const;
    void setSilenceMs(int milliseconds);
    void setSlowMs(int milliseconds);

    int requestCount() const;
    Request lastRequest() const;
    // The last ticket the service accepted; empty before the first.
    QStringList lastAcceptedPieces() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
