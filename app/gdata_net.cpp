// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the blocking HTTP GET that returns raw bytes.
#include "gdata.h"

#include "httpexchange.h"

#include <QUrl>

bool GData::httpGetRequest(const QString &url, int timeoutSeconds, QByteArray &output)
{
    qDebug("httpGetRequest = %s", url.toLocal8Bit().constData());
    httpexchange::Request request;
    request.url = QUrl(url);
    request.timeoutSeconds = timeoutSeconds;
    request.contentType = QByteArrayLiteral("application/x-www-form-urlencoded");
    // Binary downloads: no tagged lines, and the caller decides what a failure means.
    return httpexchange::get(request, output);
}
