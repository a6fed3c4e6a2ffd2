// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the pupil photo of each test and the history export's files (HTML, CSV, parent letters, bundle).
#include "gdata.h"

#include "atomicfile.h"
#include "camcfg.h"
#include "csvexport.h"
#include "fhirbundle.h"
#include "historysearch.h"
#include "parentletter.h"
#include "platform.h"
#include "systemclock.h"
#include "versionstamp.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <sys/stat.h>

namespace {

QString sexWord(const QString &sex)
{
    if (sex == QLatin1String("Male"))
        return GData::tr("Male");
    if (sex == QLatin1String("Female"))
        return GData::tr("Female");
    return sex;
}

QString resultWord(const QString &result)
{
    if (result == QLatin1String("Pass"))
        return GData::tr("Pass");
    if (result == QLatin1String("Refer"))
        return GData::tr("Refer");
    return result;
}

// A drive is in when the folder is a file system of its own: on the device
// the folder stays behind, empty, when the drive is pulled out.
bool removableMediaPresent(const Platform &platform)
{
    const QByteArray folder = QFile::encodeName(platform.removableMedia);
    struct stat own;
    if (platform.removableMedia.isEmpty() || ::stat(folder.constData(), &own) != 0 || !S_ISDIR(own.st_mode))
        return false;
    if (!platform.removableMediaMountedOnly)
        return true;
    struct stat parent;
    const QByteArray above = QFile::encodeName(QFileInfo(platform.removableMedia + QStringLiteral("/..")).absoluteFilePath());
    return ::stat(above.constData(), &parent) == 0 && parent.st_dev != own.st_dev;
}

QByteArray readAll(const QString &path, bool *ok)
{
    QFile file(path);
    *ok = file.open(QIODevice::ReadOnly);
    const QByteArray bytes = *ok ? file.readAll() : QByteArray();
    *ok = *ok && file.error() == QFileDevice::NoError;
    return bytes;
}

QString deviceDescription()
{
    return GData::tr("Orvella vision screener %1").arg(versionstamp::builtVersion());
}

} // namespace

QString GData::photoDir() const
{
    return Platform::instance().applicationDir() + QStringLiteral("/CAMCFG/photos");
}

QString GData::photoPath(const QString &key, const QStringList &test) const
{
    return photoDir() + QLatin1Char('/') + historysearch::photoFileName(key, test);
}

void GData::savePupilPhoto(const QString &line)
{
    const QImage photo = m_pupilPhoto.take();
    if (photo.isNull()) {
        qDebug("savePupilPhoto: the recording gave no frame");
        return;
    }
    const QByteArray jpeg = pupilphoto::encodeJpeg(photo);
    QDir().mkpath(photoDir());
    // Durable like the line it belongs to: a torn picture would be shown.
    if (jpeg.isEmpty() || !atomicfile::write(photoPath(historysearch::childKey(line), historysearch::testValues(line)), jpeg))
        qDebug("savePupilPhoto: the photo could not be written");
}

void GData::deletePhotos(const QString &history, const QStringList &keys)
{
    for (const QString &line : historysearch::linesWithKeys(history, keys))
        QFile::remove(photoPath(historysearch::childKey(line), historysearch::testValues(line)));
}

bool GData::prepareHistoryExport(const QStringList &keys)
{
    const QString history = readTestResult();
    int rows = 0;
    const QString html = historysearch::exportHtml(history, keys, &rows);
    qDebug("listAllRecords: %d", rows);

    // Named after the first child ticked and the moment of the export, so
    // that the recipient can tell reports apart. They sit beside the
    // recording, in the device's temporary folder, which is emptied at boot.
    const QString name = historysearch::keyFields(keys.value(0)).at(0);
    const QString htmlPath = QFileInfo(Platform::instance().recordingFile).absolutePath() + QLatin1Char('/') +
                             historysearch::reportFileName(name, getLocalTime());
    m_strReportFile.clear();
    m_strReportExtras.clear();
    m_strUsbExportDir.clear();
    m_strUsbExportError.clear();
    if (!atomicfile::write(htmlPath, html.toUtf8()))
        return false;
    m_strReportFile = htmlPath;

    const QStringList wanted =
        m_pCamCfg ? m_pCamCfg->value(CamCfg::ReportAttachments).split(QLatin1Char(',')) : QStringList();
    const QString stem = htmlPath.left(htmlPath.size() - int(qstrlen(".html")));
    const QVector<historysearch::ExportedTest> tests = historysearch::exportedTests(history, keys);

    if (wanted.contains(QLatin1String("csv"))) {
        QVector<QStringList> table{{tr("Name"), tr("Sex"), tr("Birthday"), tr("Time"), tr("OD SPH"), tr("OD CYL"),
                                    tr("OD AXIS"), tr("OS SPH"), tr("OS CYL"), tr("OS AXIS"), tr("PD"),
                                    tr("Screening results")}};
        for (const historysearch::ExportedTest &test : tests) {
            QStringList row{test.name, sexWord(test.sex), test.birthday};
            row << test.values.mid(0, historysearch::kValuesPerTest - 1) << resultWord(test.values.last());
            table << row;
        }
        if (atomicfile::write(stem + QStringLiteral(".csv"), csvexport::table(table)))
            m_strReportExtras << stem + QStringLiteral(".csv");
        else
            qDebug("prepareHistoryExport: the CSV could not be written");
    }

    if (wanted.contains(QLatin1String("pdf")) && !tests.isEmpty()) {
        // One letter per child, of the child's latest test in the export.
        QVector<parentletter::Letter> letters;
        QHash<QString, int> letterOf;
        for (const historysearch::ExportedTest &test : tests) {
            parentletter::Letter letter;
            letter.device = deviceDescription();
            letter.testTime = test.values.at(0);
            letter.name = test.name;
            letter.male = test.sex == QLatin1String("Male");
            letter.birthday = test.birthday;
            letter.odSphere = test.values.at(1);
            letter.odCylinder = test.values.at(2);
            letter.odAxis = test.values.at(3);
            letter.osSphere = test.values.at(4);
            letter.osCylinder = test.values.at(5);
            letter.osAxis = test.values.at(6);
            letter.pupilDistance = test.values.at(7);
            letter.result = test.values.at(8);
            letter.photo = QImage(photoPath(test.key(), test.values));
            const auto known = letterOf.constFind(test.key());
            if (known == letterOf.constEnd()) {
                letterOf.insert(test.key(), letters.size());
                letters << letter;
            } else {
                letters[*known] = letter;
            }
        }
        if (parentletter::write(stem + QStringLiteral(".pdf"), letters))
            m_strReportExtras << stem + QStringLiteral(".pdf");
        else
            qDebug("prepareHistoryExport: the parent letters could not be written");
    }

    if (wanted.contains(QLatin1String("fhir"))) {
        const fhirbundle::Origin origin{deviceDescription(), static_cast<int>(m_strTimeZone.toDouble() * 3600.0),
                                        QDateTime::fromMSecsSinceEpoch(systemclock::nowMSecs(), Qt::UTC)};
        if (atomicfile::write(stem + QStringLiteral(".fhir.json"), fhirbundle::bundle(tests, origin)))
            m_strReportExtras << stem + QStringLiteral(".fhir.json");
        else
            qDebug("prepareHistoryExport: the bundle could not be written");
    }

    const Platform &platform = Platform::instance();
    if (removableMediaPresent(platform)) {
        const QString folder = platform.removableMedia + QLatin1Char('/') + QFileInfo(stem).fileName();
        QStringList files{m_strReportFile};
        files << m_strReportExtras;
        bool written = QDir().mkpath(folder);
        for (const QString &file : files) {
            bool read = false;
            const QByteArray bytes = readAll(file, &read);
            // Synced file by file: a drive is pulled out as soon as the screen says done.
            written = written && read && atomicfile::write(folder + QLatin1Char('/') + QFileInfo(file).fileName(), bytes);
        }
        if (written)
            m_strUsbExportDir = folder;
        else
            m_strUsbExportError = tr("The export could not be written to the USB drive %1").arg(platform.removableMedia);
        qDebug("prepareHistoryExport: USB drive %s", written ? qPrintable(folder) : "failed");
    }
    return true;
}
