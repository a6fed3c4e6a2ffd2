// SPDX-License-Identifier: GPL-2.0-or-later
// One blocking HTTP exchange: a private event loop runs until the reply or the time-out.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QUrl>

#include <atomic>
#include <functional>

class QFile;
class QHttpMultiPart;
class QIODevice;
class QObject;

namespace httpexchange {

using LogSink = std::function<void(const QString &)>;

// Analysis results, print receipts, version texts: a few hundred bytes each.
constexpr qint64 kMaxReplyBytes = 64 * 1024;

struct Request
{
    QUrl url;
    int timeoutSeconds = 0;
    // Left empty for a multipart body, which brings its own with the boundary.
    QByteArray contentType;
    // Names the exchange's log lines ("httpGetRequest ++ 1", ...); without a
    // sink the exchange logs nothing.
    QString logName;
    LogSink log;
    // Becomes the access manager's parent when it lives in the calling thread.
    QObject *managerParent = nullptr;
    // Counted up from just before the request is issued until the wait ends.
    std::atomic<int> *inProgress = nullptr;
    // The most a reply may hold in memory: past it the exchange is abandoned
    // at once and fails, as a reply that never ends would otherwise grow the
    // process until the time-out.
    qint64 maxReplyBytes = kMaxReplyBytes;
    // When set, the body is written here as it arrives instead of being held
    // in memory; only the time-out bounds it.
    QIODevice *sink = nullptr;
};

// Each returns true with the body (or, with a sink, an empty body) when the
// server answered, whatever the HTTP status: the caller judges the content.
// False on time-out (the request is aborted), on a reply past the limit or
// that the sink did not take, on a network error or an unfinished reply; the
// body is then untouched. Reply and manager are released by deferred deletion.
bool get(const Request &request, QByteArray &body);
bool post(const Request &request, const QByteArray &data, QByteArray &body);
// Takes ownership of the form.
bool post(const Request &request, QHttpMultiPart *form, QByteArray &body);

// A form-data body: one part per field in key order, then the open file,
// which is streamed from disk while the request goes out. Takes ownership of
// the file.
QHttpMultiPart *formWithFile(const QMap<QString, QString> &fields, const QString &fileField, QFile *file);

} // namespace httpexchange
