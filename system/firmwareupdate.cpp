// SPDX-License-Identifier: GPL-2.0-or-later
// The update server's texts: the description of a version, the version list, the addresses of its files.
#include "firmwareupdate.h"

#include <QCryptographicHash>
#include <QFile>

namespace firmwareupdate {

int parseDescription(const QString &text, Description &description)
{
    const QStringList fields = text.split(QLatin1Char(';'));
    if (fields.size() != 4)
        return fields.size();
    description.version = fields.at(0);
    description.file = fields.at(1);
    description.size = fields.at(2).trimmed().toInt();
    description.md5 = fields.at(3).trimmed();
    return fields.size();
}

QStringList parseVersionList(const QString &text)
{
    QStringList entries;
    for (QString line : text.split(QLatin1Char('\n'))) {
        // Lists edited on other systems end their lines in CR LF.
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.trimmed().isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() < 2 || fields.at(0).trimmed().isEmpty() || fields.at(1).trimmed().isEmpty())
            continue;
        entries << line;
    }
    return entries;
}

QString fileUrl(const QString &baseUrl, const QString &region, const QString &file)
{
    return baseUrl + QStringLiteral("v2_q200/") + region + QLatin1Char('/') + file;
}

QString md5OfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!hash.addData(&file))
        return QString();
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace firmwareupdate
