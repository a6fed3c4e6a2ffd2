// SPDX-License-Identifier: GPL-2.0-or-later
// The device settings: 22 texts kept as one "|"-joined line in CAMCFG/config.txt.
#include "camcfg.h"

#include "atomicfile.h"
#include "common.h"
#include "platform.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QStringList>

QString CamCfg::defaultValue(int position)
{
    switch (position) {
    case Exposure: return QStringLiteral("225");
    case Gain: return QStringLiteral("1");
    case Setting3: return QStringLiteral("50");
    case LedLoop: return QStringLiteral("5");
    case Setting5: return QStringLiteral("5");
    case Resolution: return QStringLiteral("1920*1080");
    case AnalysisServer: return Platform::instance().analysisDefaultServer;
    case TimeZone: return QStringLiteral("0");
    case ScreenOffMinutes: return QStringLiteral("-1");
    case PowerOffMinutes: return QStringLiteral("-1");
    case ReferralCriterion: return QStringLiteral("0");
    case Region: return QStringLiteral("0");
    case Language: return QStringLiteral("English");
    case PrinterKind: return QStringLiteral("bt");
    case BluetoothPrinter: return QString();
    case PrinterDeviceId: return QString();
    case AutoCapture: return QStringLiteral("0");
    case PitchOffset: return QStringLiteral("0");
    case DistanceOffset: return QStringLiteral("0");
    case EmailReporting: return QStringLiteral("0");
    case EmailAddress: return QStringLiteral("Please Input Email");
    case ReportAttachments: return QStringLiteral("html");
    default: return QString();
    }
}

QString CamCfg::configDir() const
{
    return m_strBaseDir + QStringLiteral("/CAMCFG");
}

QString CamCfg::configFilePath() const
{
    return m_strBaseDir + QStringLiteral("/CAMCFG/config.txt");
}

QString CamCfg::value(int position) const
{
    if (position < 1 || position > kPositions)
        return QString();
    return m_values[static_cast<size_t>(position - 1)];
}

void CamCfg::setValue(int position, const QString &text)
{
    if (position < 1 || position > kPositions)
        return;
    m_values[static_cast<size_t>(position - 1)] = text;
}

QString CamCfg::resetDefaultCFG()
{
    for (int position = 1; position <= kPositions; ++position)
        setValue(position, defaultValue(position));
    return QString();
}

QString CamCfg::dogenCurrentCFG()
{
    // Values are not escaped: a "|" inside one shifts every later position,
    // which is how the file has always behaved.
    QStringList parts;
    for (const QString &value : m_values)
        parts << value;
    m_strRaw = parts.join(QLatin1Char('|'));
    return m_strRaw;
}

QString CamCfg::parseCurrentCFG()
{
    QString result;
    const QStringList parts = m_strRaw.split(QLatin1Char('|'));
    for (int position = 1; position <= kPositions; ++position) {
        if (position <= parts.size()) {
            setValue(position, parts.at(position - 1));
        } else {
            result = QStringLiteral("1");
            setValue(position, defaultValue(position));
        }
    }
    return result;
}

bool CamCfg::makeConfigDir() const
{
    const QDir dir(configDir());
    return dir.exists() || QDir().mkpath(configDir());
}

QString CamCfg::saveCFG2File()
{
    qDebug("%s Config %s", qPrintable(common::timeStamp()), qPrintable(m_strRaw));
    if (!makeConfigDir())
        return QStringLiteral("0");
    // Written beside the old file and renamed over it, so a power cut during
    // a settings change leaves the previous settings rather than an empty file.
    if (!atomicfile::write(configFilePath(), m_strRaw.toUtf8())) {
        qDebug("create file fail");
        return QStringLiteral("0");
    }
    return QStringLiteral("1");
}

QString CamCfg::readCFG4File()
{
    m_bUnreadable = false;
    QFile file(configFilePath());
    // A file system remounted read-only after an error still holds good
    // settings: an existing file is only read, never opened for writing.
    if (file.exists()) {
        QString text;
        if (file.open(QIODevice::ReadOnly | QIODevice::Text))
            text = QString::fromUtf8(file.readAll());
        if (!file.isOpen() || file.error() != QFileDevice::NoError) {
            qDebug("config file unreadable: %s", qPrintable(file.errorString()));
            m_bUnreadable = true;
            return QString();
        }
        return text;
    }
    if (!makeConfigDir())
        return QString();
    if (!file.open(QIODevice::ReadWrite | QIODevice::Text)) {
        qDebug("create file fail");
        return QString();
    }
    return QString::fromUtf8(file.readAll());
}
