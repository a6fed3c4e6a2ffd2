// SPDX-License-Identifier: GPL-2.0-or-later
// The update server's texts: the description of a version, the version list, the addresses of its files.
#pragma once

#include <QString>
#include <QStringList>

namespace firmwareupdate {

// One published version: "name;file;size;md5".
struct Description
{
    QString version;
    QString file;
    qint32 size = 0;
    QString md5;
};

// The number of ";"-separated fields; the description is filled only when
// there are exactly four (the digest without surrounding blanks).
int parseDescription(const QString &text, Description &description);

// The lines of the version list that name a version: one version a line,
// fields separated by tabs, the version first and its description file
// second, then an optional note for the service user. Blank lines, lines
// starting with "#" and lines with fewer than two fields are skipped.
QStringList parseVersionList(const QString &text);

// The server's base address (ending in "/"), the channel, the region's
// folder and the file name as the caller spells it.
QString fileUrl(const QString &baseUrl, const QString &region, const QString &file);

// Lower-case hexadecimal MD5 of a file; empty when it cannot be read.
QString md5OfFile(const QString &path);

} // namespace firmwareupdate
