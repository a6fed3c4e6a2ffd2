// SPDX-License-Identifier: GPL-2.0-or-later
// Tagged debug lines, the blocking HTTP requests and the device's hardware address.
#pragma once

#include "macaddress.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>

// Owned by GData; the helpers of the network code.
class common : public QObject
{
    Q_OBJECT

public:
    explicit common(QObject *parent = nullptr);

    void setVersion(const QString &version) { m_strVersion = version; }
    QString version() const { return m_strVersion; }

    // Despite the names nothing is written to a file: each line goes to the
    // debug output, which the message handler sends to standard error.
    void saveLOG2File(const QString &text);
    void saveCHK2File(const QString &text);
    void saveSCL2File(const QString &text);

    // "hh:mm:ss" of now, the stamp of every tagged line.
    static QString timeStamp();

    // Blocking requests for callers that treat an exchange as one call; the
    // event loop keeps running meanwhile, so callers guard against re-entry.
    // Each returns the body as UTF-8, whatever the HTTP status, or empty on
    // time-out or network error. Any thread may call them.
    QString httpGetRequest(const QString &url, int timeoutSeconds);
    QString httpPostRequest(const QString &url, const QByteArray &body, int timeoutSeconds);
    QString httpPostJsonRequest(const QString &url, const QByteArray &json, int timeoutSeconds);
    // The fields in key order, then the file streamed from disk as "video/mpeg".
    // A file that cannot be opened sends nothing and returns empty.
    QString httpPostRequestWithFile(const QString &url, int timeoutSeconds, const QMap<QString, QString> &fields,
                                    const QString &fileField, const QString &filePath);
    // True while any multipart upload is waiting for its reply.
    static bool uploadInProgress();

    // Upper case, colon-separated; empty while no interface but loopback is up.
    QString GetETNetMACAddress();
    // Where the interfaces are listed from: the system's by default. A new
    // source also forgets the address found so far, for the whole process.
    static void setInterfaceSource(macaddress::Lister lister);

private:
    QString m_strVersion;
};
