// SPDX-License-Identifier: GPL-2.0-or-later
// Tagged debug lines, the blocking HTTP requests and the device's hardware address.
#include "common.h"

#include "httpexchange.h"
#include "macaddress.h"

#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QUrl>

#include <atomic>
#include <mutex>
#include <utility>

namespace {

const QByteArray kFormContentType = QByteArrayLiteral("application/x-www-form-urlencoded");
const QByteArray kJsonContentType = QByteArrayLiteral("application/json");

// A count rather than a flag: an upload from a worker thread may overlap one
// from the GUI thread, and the first to end must not lower it for both.
std::atomic<int> s_uploadsInProgress{0};

httpexchange::Request requestFor(common *owner, const QString &name, const QString &url, int timeoutSeconds)
{
    httpexchange::Request request;
    request.url = QUrl(url);
    request.timeoutSeconds = timeoutSeconds;
    request.contentType = kFormContentType;
    request.logName = name;
    request.log = [owner](const QString &text) {
        owner->saveCHK2File(text);
    };
    request.managerParent = owner;
    return request;
}

void emitTagged(const char *format, const QString &text)
{
    const QByteArray stamp = common::timeStamp().toLocal8Bit();
    const QByteArray bytes = text.toLocal8Bit();
    qDebug(format, stamp.constData(), bytes.constData());
}

} // namespace

common::common(QObject *parent)
    : QObject(parent)
{
}

QString common::timeStamp()
{
    return QDateTime::currentDateTime().time().toString(QStringLiteral("hh:mm:ss"));
}

void common::saveLOG2File(const QString &text)
{
    emitTagged("[LOG] %s %s", text);
}

void common::saveCHK2File(const QString &text)
{
    emitTagged("[CHK] %s %s", text);
}

void common::saveSCL2File(const QString &text)
{
    emitTagged("[SCL] %s %s", text);
}

QString common::httpGetRequest(const QString &url, int timeoutSeconds)
{
    saveCHK2File(QStringLiteral("httpGetRequest ++ [S] ==1== [%1]").arg(url));
    QByteArray body;
    if (!httpexchange::get(requestFor(this, QStringLiteral("httpGetRequest"), url, timeoutSeconds), body))
        return QString();
    return QString::fromUtf8(body);
}

QString common::httpPostRequest(const QString &url, const QByteArray &body, int timeoutSeconds)
{
    saveCHK2File(QStringLiteral("httpPostRequest ++ [S] [%1] [%2] ==1==").arg(url, QString::fromUtf8(body)));
    QByteArray reply;
    if (!httpexchange::post(requestFor(this, QStringLiteral("httpPostRequest"), url, timeoutSeconds), body, reply))
        return QString();
    return QString::fromUtf8(reply);
}

QString common::httpPostJsonRequest(const QString &url, const QByteArray &json, int timeoutSeconds)
{
    // Logs under the plain POST's name on purpose: the lines read the same
    // whichever body type the caller chose.
    saveCHK2File(QStringLiteral("httpPostRequest ++ [S] [%1] [%2] ==1==").arg(url, QString::fromUtf8(json)));
    httpexchange::Request request = requestFor(this, QStringLiteral("httpPostRequest"), url, timeoutSeconds);
    request.contentType = kJsonContentType;
    QByteArray reply;
    if (!httpexchange::post(request, json, reply))
        return QString();
    return QString::fromUtf8(reply);
}

QString common::httpPostRequestWithFile(const QString &url, int timeoutSeconds, const QMap<QString, QString> &fields,
                                        const QString &fileField, const QString &filePath)
{
    const QString name = QStringLiteral("httpPostRequestWithFile");
    saveCHK2File(QStringLiteral("httpPostRequestWithFile ++ [S] ==1== [%1]").arg(url));
    for (auto it = fields.constBegin(); it != fields.constEnd(); ++it)
        saveCHK2File(QStringLiteral("httpPostRequestWithFile ++ [S] ==2== [%1] [%2]").arg(it.key(), it.value()));
    saveCHK2File(QStringLiteral("httpPostRequestWithFile ++ [S] ==3== [%1]").arg(filePath));

    auto *file = new QFile(filePath);
    const bool opened = file->open(QIODevice::ReadOnly);
    saveCHK2File(QStringLiteral("httpPostRequestWithFile ++ [S] ==4== [%1]").arg(file->size()));
    if (!opened) {
        // Posting an empty video would only earn a meaningless analysis.
        delete file;
        saveCHK2File(name + QStringLiteral(" --"));
        return QString();
    }

    httpexchange::Request request = requestFor(this, name, url, timeoutSeconds);
    request.contentType.clear();
    request.inProgress = &s_uploadsInProgress;
    QByteArray reply;
    if (!httpexchange::post(request, httpexchange::formWithFile(fields, fileField, file), reply))
        return QString();
    return QString::fromUtf8(reply);
}

bool common::uploadInProgress()
{
    return s_uploadsInProgress > 0;
}

namespace {

std::mutex s_addressMutex;
macaddress::Lister s_interfaceSource = macaddress::systemInterfaces;
QString s_cachedAddress;

} // namespace

QString common::GetETNetMACAddress()
{
    std::lock_guard<std::mutex> locker(s_addressMutex);
    return macaddress::lookup(s_cachedAddress, s_interfaceSource,
                              [this](const QString &text) { saveLOG2File(text); });
}

void common::setInterfaceSource(macaddress::Lister lister)
{
    std::lock_guard<std::mutex> locker(s_addressMutex);
    s_interfaceSource = std::move(lister);
    s_cachedAddress.clear();
}
