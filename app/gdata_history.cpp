// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the history file of all tests.
#include "gdata.h"

#include "atomicfile.h"
#include "historyrecord.h"
#include "platform.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

namespace {

QString historyDir()
{
    return Platform::instance().applicationDir() + QStringLiteral("/CAMCFG");
}

QString historyFile()
{
    return historyDir() + QStringLiteral("/result.txt");
}

} // namespace

void GData::saveTestResult()
{
    QDir().mkpath(historyDir());
    QFile file(historyFile());
    // Read as well as append: the end of what is there is looked at first.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Text))
        return;
    m_strTestTime = historyrecord::testTimeText(getLocalTime());

    const QString line = historyrecord::line(currentTest());
    qDebug("%s", qPrintable(line));

    // A line cut short by a power cut or a full disk must not swallow this
    // one: it starts on a line of its own, and the broken one stays broken.
    QByteArray bytes = (line + QLatin1Char('\n')).toUtf8();
    const qint64 size = file.size();
    char last = '\n';
    if (size > 0 && (!file.seek(size - 1) || file.read(&last, 1) != 1))
        last = '\n';
    if (last != '\n')
        bytes.prepend('\n');
    const qint64 written = file.write(bytes);
    if (written != bytes.size()) {
        qDebug("saveTestResult: only %lld of %lld bytes written", static_cast<long long>(written),
               static_cast<long long>(bytes.size()));
        // End whatever went in, so that the next record starts cleanly.
        if (written > 0)
            file.write("\n", 1);
    }
    // The result page counts the test as kept once this returns: a power cut
    // after that must not take the line with it from the page cache.
    if (file.flush())
        ::fdatasync(file.handle());
    file.close();
    if (written == bytes.size())
        savePupilPhoto(line);
}

historyrecord::Test GData::currentTest() const
{
    historyrecord::Test test;
    test.name = m_strName;
    test.male = m_nSex != 0;
    test.birthday = m_dateBirthday;
    test.testTime = m_strTestTime;
    test.odSphere = m_strODSphere;
    test.odCylinder = m_strODCylinder;
    test.odAxis = m_strODAxis;
    test.osSphere = m_strOSSphere;
    test.osCylinder = m_strOSCylinder;
    test.osAxis = m_strOSAxis;
    test.pupilDistance = m_strPupilDistance;
    test.result = m_strResult;
    return test;
}

QString GData::readTestResult()
{
    QFile file(historyFile());
    m_bHistoryUnreadable = false;
    if (!file.exists())
        return QString();
    if (!file.open(QIODevice::ReadOnly)) {
        m_bHistoryUnreadable = true;
        return QString();
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        m_bHistoryUnreadable = true;
        return QString();
    }
    // A power cut can leave a run of zero bytes where a block was allocated
    // but never written; records appended after it are still good. Each run
    // becomes a line end, so that a torn line before it stays apart.
    QByteArray clean;
    clean.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes.at(i) != '\0') {
            clean.append(bytes.at(i));
        } else if (i == 0 || bytes.at(i - 1) != '\0') {
            clean.append('\n');
        }
    }
    return QString::fromUtf8(clean);
}

bool GData::saveDeleteResult(const QString &text)
{
    if (m_bHistoryUnreadable) {
        qDebug("saveDeleteResult: the history could not be read; it is left as it is");
        return false;
    }
    // A torn rewrite would lose every record, not only the deleted ones.
    return atomicfile::write(historyFile(), text.toUtf8());
}
