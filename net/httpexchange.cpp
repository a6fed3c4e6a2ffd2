// SPDX-License-Identifier: GPL-2.0-or-later
// One blocking HTTP exchange: a private event loop runs until the reply or the time-out.
#include "httpexchange.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QHttpMultiPart>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QThread>
#include <QTimer>

#include <climits>

namespace httpexchange {

namespace {

void logLine(const Request &request, const QString &text)
{
    if (request.log)
        request.log(text);
}

int intervalMs(int timeoutSeconds)
{
    return qBound(0, timeoutSeconds, INT_MAX / 1000) * 1000;
}

// Qt reports an HTTP error status (400, 404, 500, ...) as a reply error, yet
// the server did answer, and its body (often the reason for a refusal) is for
// the caller to judge. Only a failure to get a status at all counts as an
// error here; Qt files some statuses (400 among them) as protocol errors, so
// the status itself decides, not the error's range.
bool serverAnswered(const QNetworkReply &reply)
{
    if (reply.error() == QNetworkReply::NoError)
        return true;
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid() &&
           reply.error() != QNetworkReply::OperationCanceledError;
}

void releaseLater(QNetworkReply *reply, QNetworkAccessManager *manager)
{
    reply->deleteLater();
    manager->deleteLater();
    // A worker thread that never runs an event loop would hold on to both (and
    // the manager's connection thread) until it ends. The reply goes first: it
    // is the manager's child.
    if (QThread::currentThread()->loopLevel() == 0) {
        QCoreApplication::sendPostedEvents(reply, QEvent::DeferredDelete);
        QCoreApplication::sendPostedEvents(manager, QEvent::DeferredDelete);
    }
}

template <typename Issue> bool exchange(const Request &request, Issue issue, QByteArray &body)
{
    QObject *parent = request.managerParent;
    // Qt refuses a parent in another thread; the manager is deleted explicitly anyway.
    if (parent && parent->thread() != QThread::currentThread())
        parent = nullptr;
    auto *manager = new QNetworkAccessManager(parent);
    QNetworkRequest networkRequest(request.url);
    if (!request.contentType.isEmpty())
        networkRequest.setHeader(QNetworkRequest::ContentTypeHeader, request.contentType);
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);

    // Single-shot, so that an inactive timer after the wait means it fired.
    QTimer timer;
    timer.setSingleShot(true);
    timer.setInterval(intervalMs(request.timeoutSeconds));

    if (request.inProgress)
        ++*request.inProgress;
    QNetworkReply *reply = issue(*manager, networkRequest);

    QEventLoop loop;
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    // Taken as it arrives: into the sink, or checked against the limit while
    // Qt holds it.
    bool refused = false;
    const auto take = [&] {
        if (refused)
            return;
        if (request.sink) {
            const QByteArray chunk = reply->readAll();
            refused = request.sink->write(chunk) != chunk.size();
        } else {
            refused = reply->bytesAvailable() > request.maxReplyBytes;
        }
        if (refused)
            loop.quit();
    };
    QObject::connect(reply, &QNetworkReply::readyRead, &loop, take);
    timer.start();
    if (!reply->isFinished())
        loop.exec();
    take();
    if (request.inProgress)
        --*request.inProgress;
    logLine(request, request.logName + QStringLiteral(" ++ 1"));

    const auto abandon = [&](const QString &why) {
        QObject::disconnect(reply, nullptr, &loop, nullptr);
        reply->abort();
        releaseLater(reply, manager);
        logLine(request, why);
        logLine(request, request.logName + QStringLiteral(" --"));
        return false;
    };
    if (refused)
        return abandon(QStringLiteral("[R] reply past the limit or not stored"));
    // A reply that finished in the same pass of the loop as the time-out is
    // complete: it is kept.
    if (!timer.isActive() && !reply->isFinished())
        return abandon(QStringLiteral("[R] F"));
    timer.stop();
    logLine(request, QStringLiteral("[R] C [%1] R [%2]")
                         .arg(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toString())
                         .arg(int(reply->error())));

    bool answered = false;
    if (serverAnswered(*reply) && reply->isFinished()) {
        body = request.sink ? QByteArray() : reply->readAll();
        if (request.log)
            logLine(request, QStringLiteral("[R] P [%1]").arg(QString::fromUtf8(body)));
        answered = true;
    }
    releaseLater(reply, manager);
    logLine(request, request.logName + QStringLiteral(" --"));
    return answered;
}

} // namespace

bool get(const Request &request, QByteArray &body)
{
    return exchange(
        request,
        [](QNetworkAccessManager &manager, const QNetworkRequest &networkRequest) {
            return manager.get(networkRequest);
        },
        body);
}

bool post(const Request &request, const QByteArray &data, QByteArray &body)
{
    return exchange(
        request,
        [&data](QNetworkAccessManager &manager, const QNetworkRequest &networkRequest) {
            return manager.post(networkRequest, data);
        },
        body);
}

bool post(const Request &request, QHttpMultiPart *form, QByteArray &body)
{
    return exchange(
        request,
        [form](QNetworkAccessManager &manager, const QNetworkRequest &networkRequest) {
            QNetworkReply *reply = manager.post(networkRequest, form);
            form->setParent(reply);
            return reply;
        },
        body);
}

QHttpMultiPart *formWithFile(const QMap<QString, QString> &fields, const QString &fileField, QFile *file)
{
    auto *form = new QHttpMultiPart(QHttpMultiPart::FormDataType);
    for (auto it = fields.constBegin(); it != fields.constEnd(); ++it) {
        QHttpPart part;
        part.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/x-www-form-urlencoded"));
        part.setHeader(QNetworkRequest::ContentDispositionHeader,
                       QStringLiteral("form-data; name=\"%1\"").arg(it.key()));
        part.setBody(it.value().toUtf8());
        form->append(part);
    }
    QHttpPart filePart;
    filePart.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("video/mpeg"));
    filePart.setHeader(QNetworkRequest::ContentDispositionHeader,
                       QStringLiteral("form-data; name=\"%1\"; filename=\"%2\"")
                           .arg(fileField, QFileInfo(file->fileName()).fileName()));
    filePart.setBodyDevice(file);
    file->setParent(form);
    form->append(filePart);
    return form;
}

} // namespace httpexchange
