// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the upload of the recording to the analysis server, its reply, and the readers of JSON replies.
#include "gdata.h"

#include "analysisreply.h"
#include "common.h"
#include "platform.h"
#include "region.h"

#include <QDebug>
#include <QMap>

#include <cjson/cJSON.h>

namespace {

const cJSON *jsonItem(const cJSON *object, const char *name, const QString &reply)
{
    const cJSON *item = object ? cJSON_GetObjectItem(object, name) : nullptr;
    if (!item)
        qDebug("cJSON_GetObjectItem Error: %s %s", name, reply.toLocal8Bit().constData());
    return item;
}

} // namespace

bool GData::uploadAVIFile()
{
    Q_ASSERT(m_pCommon);
    const Platform &platform = Platform::instance();
    m_strLastError.clear();
    m_bNoResponse = false;

    // The patient's details stay on the device: the server gets zeros.
    const QMap<QString, QString> fields{{QStringLiteral("student_info"), QStringLiteral("0__0__0__0")}};
    const QString url = region::analysisUrl(m_nRegion, platform, m_pCommon->GetETNetMACAddress());
    const QString reply = m_pCommon->httpPostRequestWithFile(url, m_nUploadTimeoutSeconds, fields,
                                                             QStringLiteral("pupil_video"), platform.recordingFile);
    // A long upload can outlast the link it started on.
    m_nWifiChanged = 1;

    m_strPhotoResult = reply;
    qDebug("m_strPhotoResult=%s", m_strPhotoResult.toLocal8Bit().constData());
    if (reply.isEmpty()) {
        m_strPhotoResult = QStringLiteral("No Response");
        m_bNoResponse = true;
        m_strLastError = tr("No response from the analysis server.");
        return false;
    }

    analysisreply::Refraction values;
    if (!analysisreply::decode(reply, values)) {
        m_strLastError = tr("The analysis server's answer could not be read.");
        return false;
    }
    m_strOSSphere = values.osSphere;
    m_strODSphere = values.odSphere;
    m_strOSCylinder = values.osCylinder;
    m_strODCylinder = values.odCylinder;
    m_strPupilDistance = values.pupilDistance;
    m_strOSAxis = values.osAxis;
    m_strODAxis = values.odAxis;
    betterData();
    return true;
}

void GData::betterData()
{
    analysisreply::Refraction values{m_strOSSphere,      m_strODSphere, m_strOSCylinder, m_strODCylinder,
                                     m_strPupilDistance, m_strOSAxis,   m_strODAxis};
    analysisreply::normalise(values);
    m_strOSSphere = values.osSphere;
    m_strODSphere = values.odSphere;
    m_strOSCylinder = values.osCylinder;
    m_strODCylinder = values.odCylinder;
    m_strOSAxis = values.osAxis;
    m_strODAxis = values.odAxis;
}

QString GData::toOpticFloat(const QString &text) const
{
    return analysisreply::toOpticFloat(text);
}

bool GData::getJsonString(const cJSON *object, const char *name, const QString &reply, QString &value)
{
    const cJSON *item = jsonItem(object, name, reply);
    if (!item)
        return false;
    char *text = cJSON_PrintUnformatted(item);
    if (!text)
        return false;
    value = QString::fromUtf8(text);
    cJSON_free(text);
    return true;
}

bool GData::getJsonStringValue(const cJSON *object, const char *name, const QString &reply, QString &value)
{
    const cJSON *item = jsonItem(object, name, reply);
    if (!cJSON_IsString(item) || !item->valuestring)
        return false;
    value = QString::fromUtf8(item->valuestring);
    return true;
}

bool GData::getJsonIntValue(const cJSON *object, const char *name, const QString &reply, int &value)
{
    const cJSON *item = jsonItem(object, name, reply);
    if (!cJSON_IsNumber(item))
        return false;
    // cJSON has already clamped the number to the range of an int.
    value = item->valueint;
    return true;
}

QString GData::getRegionString() const
{
    return QString::fromLatin1(region::forIndex(m_nRegion).name);
}
