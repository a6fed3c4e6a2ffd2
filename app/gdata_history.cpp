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
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    m_strTestTime = historyrecord::testTimeText(getLocalTime());

    const QString line = historyrecord::line(currentTest());
    qDebug("%s", qPrintable(line));

    file.write((line + QLatin1Char('\n')).toUtf8());
    // The result page counts the test as kept once this returns: a power cut
    // after that must not take the line with it from the page cache.
    if (file.flush())
        ::fdatasync(file.handle());
    file.close();
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
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QByteArray bytes = file.readAll();
    const int zero = bytes.indexOf('\0');
    if (zero >= 0)
        bytes.truncate(zero);
    return QString::fromUtf8(bytes);
}

void GData::saveDeleteResult(const QString &text)
{
    // A torn rewrite would lose every record, not only the deleted ones.
    atomicfile::write(historyFile(), text.toUtf8());
}
