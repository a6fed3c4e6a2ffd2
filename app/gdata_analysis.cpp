// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the upload of the recording to the analysis server, its reply, and the readers of JSON replies.
#include "gdata.h"

#include "analysisreply.h"
#include "common.h"
#include "jsonreply.h"
#include "platform.h"
#include "region.h"

#include <QDebug>
#include <QMap>

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
    return jsonreply::string(object, name, reply, value);
}

bool GData::getJsonStringValue(const cJSON *object, const char *name, const QString &reply, QString &value)
{
    return jsonreply::stringValue(object, name, reply, value);
}

bool GData::getJsonIntValue(const cJSON *object, const char *name, const QString &reply, int &value)
{
    return jsonreply::intValue(object, name, reply, value);
}

QString GData::getRegionString() const
{
    return QString::fromLatin1(region::forIndex(m_nRegion).name);
}
