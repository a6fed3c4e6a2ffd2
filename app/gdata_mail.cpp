// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the report mailer's two messages, the history export and a test's video report.
#include "gdata.h"

#include "camcfg.h"
#include "mailer.h"
#include "platform.h"
#include "systemclock.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

// The device's own idea of now, in its configured zone, for the Date header.
QDateTime deviceTime(const QString &zone)
{
    const int offset = static_cast<int>(zone.toDouble() * 3600.0);
    return QDateTime::fromMSecsSinceEpoch(systemclock::nowMSecs(), Qt::OffsetFromUTC, offset);
}

QString orNotAvailable(const QString &value)
{
    return value.isEmpty() ? QStringLiteral("N/A") : value;
}

// Both messages go to the address of settings position 21 through the
// server the deployment names; an unknown security word sends nothing rather
// than falling back to a plain connection.
QString sendMail(GData &data, const Mailer::Message &message, const char *logName)
{
    const GData::BusyJob job(data);
    const Platform &platform = Platform::instance();
    Mailer::Account account;
    if (!Mailer::parseSecurity(platform.mailSecurity, account.security)) {
        const QString failure =
            GData::tr("The mail security setting \"%1\" is not none, starttls or tls").arg(platform.mailSecurity);
        qDebug("%s = %s", logName, qPrintable(failure));
        return failure;
    }
    account.host = platform.mailServer;
    account.port = platform.mailPort;
    account.user = platform.mailUser;
    account.password = platform.mailPassword;
    account.sender = platform.mailSender;
    account.caFile = platform.mailCaFile;

    Mailer::Message addressed = message;
    addressed.recipients = data.m_pCamCfg ? data.m_pCamCfg->value(CamCfg::EmailAddress) : QString();
    // The factory text stands for no address; as an address it would read
    // as one named "Please" that is not valid.
    if (addressed.recipients == CamCfg::defaultValue(CamCfg::EmailAddress))
        addressed.recipients.clear();
    addressed.date = deviceTime(data.m_strTimeZone);
    const QString failure = Mailer(account).send(addressed);
    qDebug("%s = %s", logName, failure.isEmpty() ? "OK" : qPrintable(failure));
    return failure;
}

} // namespace

QString GData::smtpSendReport()
{
    if (m_strReportFile.isEmpty())
        return tr("There is no report to send");
    QFile file(m_strReportFile);
    if (!file.open(QIODevice::ReadOnly))
        return tr("The report %1 cannot be read").arg(m_strReportFile);
    const QByteArray html = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return tr("The report %1 cannot be read").arg(m_strReportFile);

    Mailer::Message message;
    message.subject = tr("Vision screening records");
    message.body = QString::fromUtf8(html);
    message.bodyType = "text/html";
    message.attachments.append({m_strReportFile, QFileInfo(m_strReportFile).fileName(), "text/html; charset=utf-8"});
    for (const QString &extra : m_strReportExtras) {
        QByteArray type = "application/octet-stream";
        if (extra.endsWith(QLatin1String(".csv")))
            type = "text/csv; charset=utf-8; header=present";
        else if (extra.endsWith(QLatin1String(".pdf")))
            type = "application/pdf";
        else if (extra.endsWith(QLatin1String(".json")))
            type = "application/fhir+json";
        message.attachments.append({extra, QFileInfo(extra).fileName(), type});
    }
    return sendMail(*this, message, "smtpSendReport");
}

QString GData::smtpSendVideoReport()
{
    const QString verdict = m_strResult == QLatin1String("Pass")
                                ? tr("Pass")
                                : (m_strResult == QLatin1String("Refer") ? tr("Refer") : tr("No result"));
    Mailer::Message message;
    message.subject = tr("Vision screening of %1: %2").arg(m_strName, verdict);
    QStringList lines;
    lines << tr("Vision screening report") << QString();
    lines << tr("Name: %1").arg(m_strName);
    lines << tr("Sex: %1").arg(m_nSex != 0 ? tr("Male") : tr("Female"));
    lines << tr("Birthday: %1").arg(m_dateBirthday.toString(QStringLiteral("yyyy-MM-dd")));
    lines << tr("Test time: %1").arg(m_strTestTime);
    lines << QString();
    lines << tr("Right eye (OD): sphere %1, cylinder %2, axis %3")
                 .arg(orNotAvailable(m_strODSphere), orNotAvailable(m_strODCylinder), orNotAvailable(m_strODAxis));
    lines << tr("Left eye (OS): sphere %1, cylinder %2, axis %3")
                 .arg(orNotAvailable(m_strOSSphere), orNotAvailable(m_strOSCylinder), orNotAvailable(m_strOSAxis));
    lines << tr("Pupil distance: %1").arg(orNotAvailable(m_strPupilDistance));
    lines << tr("Result: %1").arg(verdict);
    lines << QString() << tr("The recording of the test is attached.") << QString();
    message.body = lines.join(QStringLiteral("\r\n"));

    // The same file-name rules as the history export: letters, digits and
    // underscores from the name, the test time without separators.
    QString stem = m_strName;
    stem.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_]")), QStringLiteral("_"));
    QString time = m_strTestTime;
    time.remove(QRegularExpression(QStringLiteral("[-:\\s]")));
    const QString fileName = QStringLiteral("%1_%2.avi").arg(stem.isEmpty() ? QStringLiteral("test") : stem, time);
    message.attachments.append({Platform::instance().recordingFile, fileName, "video/x-msvideo"});
    return sendMail(*this, message, "smtpSendVideoReport");
}

QString GData::smtpSendTestMail()
{
    Mailer::Message message;
    message.subject = tr("Test message from the vision screener");
    message.body = tr("This message confirms that the screener can send its reports to this address.");
    return sendMail(*this, message, "smtpSendTestMail");
}
