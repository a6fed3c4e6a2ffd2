// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the firmware update: the server's description, the download and its checks, the boot-time hand-over.
#include "gdata.h"

#include "atomicfile.h"
#include "cmdutil.h"
#include "common.h"
#include "firmwareupdate.h"
#include "httpexchange.h"
#include "platform.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QFile>
#include <QSaveFile>
#include <QUrl>

namespace {

QString updateFile(const char *name)
{
    return Platform::instance().applicationDir() + QLatin1String(name);
}

// The file the start-up script counts boots in while a new program is on
// trial (deploy/orvella-start).
const char *const kTrialFile = "/orvella.trial";

qint64 monotonicMs()
{
    static const QElapsedTimer clock = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    // Never 0, which stands for "not yet".
    return clock.elapsed() + 1;
}

} // namespace

QString GData::versionFileUrl(const QString &file) const
{
    return firmwareupdate::fileUrl(Platform::instance().updateBaseUrl, getRegionString(), file);
}

int GData::fetchVersionDescription(const QString &file, bool compareVersion, int timeoutSeconds,
                                   firmwareupdate::Description &description)
{
    QByteArray reply;
    if (!httpGetRequest(versionFileUrl(file), timeoutSeconds, reply))
        return -1;
    const QString text = QString::fromUtf8(reply);
    qDebug("versionCheck = %s", text.toLocal8Bit().constData());
    const int fields = firmwareupdate::parseDescription(text, description);
    if (fields != 4) {
        qDebug("strList.size() = %d", fields);
        return 0;
    }
    // Any other name counts, older as well as newer: the server's file names
    // the version the device should run, which may be a withdrawal.
    if (compareVersion && description.version == m_pCommon->version())
        return 0;
    return 1;
}

int GData::versionCheck()
{
    // Per-device channels ("version_" + name + ".txt") were planned but no
    // device has a name for one: the empty name keeps every device on
    // "version.txt", deliberately.
    const QString channel;
    const QString versionFile = channel.isEmpty() ? QStringLiteral("version.txt")
                                                  : QStringLiteral("version_") + channel + QStringLiteral(".txt");
    qDebug("versionFile: %s", versionFile.toLocal8Bit().constData());
    return adoptVersionDescription(versionFile, true);
}

int GData::versionCheck(const QString &file)
{
    return adoptVersionDescription(file, false);
}

int GData::adoptVersionDescription(const QString &file, bool compareVersion)
{
    firmwareupdate::Description description;
    const int result = fetchVersionDescription(file, compareVersion, 60, description);
    if (result <= 0)
        return result;
    m_strNewVerFile = description.file;
    m_nNewVerSize = description.size;
    m_strNewVerMD5 = description.md5;
    qDebug("m_strNewVerMD5: [%s]", m_strNewVerMD5.toLocal8Bit().constData());
    return 1;
}

int GData::versionListGet()
{
    QByteArray reply;
    if (!httpGetRequest(versionFileUrl(QStringLiteral("/versionList.txt")), 60, reply))
        return -1;
    const QString text = QString::fromUtf8(reply);
    qDebug("versionList = %s", text.toLocal8Bit().constData());
    m_strVersionList = firmwareupdate::parseVersionList(text);
    return m_strVersionList.size();
}

bool GData::versionDownlod()
{
    const QString firmwareFileUrl = versionFileUrl(m_strNewVerFile);
    qDebug("firmwareFileUrl: %s", firmwareFileUrl.toLocal8Bit().constData());
    // A program image is megabytes: it goes into its file as it arrives, not
    // into memory. QSaveFile syncs it on commit, so the start-up script never
    // finds a new program whose bytes are still in the page cache; an
    // uncommitted one is discarded.
    QSaveFile file(updateFile("/orvella.tmp"));
    if (!file.open(QIODevice::WriteOnly)) {
        qDebug("versionSave failed");
        return false;
    }
    httpexchange::Request request;
    request.url = QUrl(firmwareFileUrl);
    request.timeoutSeconds = 60;
    request.contentType = QByteArrayLiteral("application/x-www-form-urlencoded");
    request.sink = &file;
    QByteArray unused;
    if (!httpexchange::get(request, unused) || !file.flush()) {
        qDebug("httpGetRequest failed!");
        return false;
    }
    if (file.size() != m_nNewVerSize) {
        qDebug("versionDownlod len error %d %d", m_nNewVerSize, static_cast<int>(file.size()));
        return false;
    }
    if (!file.commit()) {
        qDebug("versionSave failed");
        return false;
    }
    if (!versionMD5Check()) {
        qDebug("versionMD5Check failed");
        return false;
    }
    if (!versionCopy()) {
        qDebug("versionCopy failed");
        return false;
    }
    return true;
}

bool GData::versionSave(QByteArray &data)
{
    // Synced before it is renamed into place, so that the start-up script
    // never finds a new program whose bytes are still in the page cache.
    return atomicfile::write(updateFile("/orvella.tmp"), data);
}

bool GData::versionMD5Check()
{
    const QString downloaded = firmwareupdate::md5OfFile(updateFile("/orvella.tmp"));
    qDebug("download file MD5 %s", downloaded.toLocal8Bit().constData());
    qDebug("file desc MD5: %s", m_strNewVerMD5.toLocal8Bit().constData());
    // Digests are published in either case; the letters mean the same number.
    return !downloaded.isEmpty() && downloaded.compare(m_strNewVerMD5, Qt::CaseInsensitive) == 0;
}

bool GData::versionCopy()
{
    const QString from = updateFile("/orvella.tmp");
    const QString to = updateFile("/orvella.new");
    // Arguments rather than one command line, so that a folder with a blank
    // in its name still names the right files. mv says nothing when it
    // succeeds: the files tell.
    QStringList arguments{from, to};
    m_pCmdUtil->sendCommand(QStringLiteral("mv"), arguments);
    return QFile::exists(to) && !QFile::exists(from);
}

void GData::versionDelete()
{
    QStringList arguments{updateFile("/orvella.new")};
    m_pCmdUtil->sendCommand(QStringLiteral("rm"), arguments);
}

void GData::markBootGood()
{
    QFile::remove(updateFile(kTrialFile));
}

void GData::timerVersionCheck()
{
    // The polling thread calls this every second or two while the camera is
    // idle. A version is published a few times a year: asking every few
    // hours is plenty, and only once the network has proved it works.
    if (!m_bNetworkReady)
        return;
    const qint64 now = monotonicMs();
    if (m_nLastVersionCheckMs != 0 && now - m_nLastVersionCheckMs < 1000LL * m_nVersionCheckPeriodSeconds)
        return;
    m_nLastVersionCheckMs = now;
    // Its own description, not the stored one: the GUI may be downloading
    // the version it stored meanwhile.
    firmwareupdate::Description description;
    const int result =
        fetchVersionDescription(QStringLiteral("version.txt"), true, m_nVersionCheckTimeoutSeconds, description);
    // A server that does not answer says nothing about what is published.
    if (result >= 0)
        m_nNewVersionPublished = result > 0 ? 1 : 0;
}
