// SPDX-License-Identifier: GPL-2.0-or-later
// The program's version, kept in a fixed-size record that a copy of the program can be restamped in.
#include "versionstamp.h"

#include <cstring>

namespace {

constexpr int kRecordBytes = 64;

} // namespace

// The marker, the version and zero padding, in a record of fixed size. It has
// external linkage and is read through a volatile pointer so that the
// compiler can neither drop it nor fold the version into the code: the
// simulator publishes updates by rewriting these bytes in a copy of the
// program file, and the copy must then report the new version.
extern const char orvella_version_record[kRecordBytes];
__attribute__((used)) const char orvella_version_record[kRecordBytes] = "\x01ORVELLA-VERSION-RECORD:0.0.1";

namespace {

QByteArray readRecord()
{
    QByteArray record(kRecordBytes, '\0');
    const volatile char *source = orvella_version_record;
    for (int i = 0; i < kRecordBytes; ++i)
        record[i] = source[i];
    return record;
}

// Up to and including the colon. Taken from the record itself rather than
// spelled again, so that the program holds these bytes exactly once.
QByteArray marker(const QByteArray &record)
{
    return record.left(record.indexOf(':') + 1);
}

} // namespace

namespace versionstamp {

QString builtVersion()
{
    const QByteArray record = readRecord();
    const QByteArray head = marker(record);
    const QByteArray rest = record.mid(head.size());
    return QString::fromUtf8(rest.left(rest.indexOf('\0')));
}

bool restamp(QByteArray &program, const QString &version)
{
    const QByteArray head = marker(readRecord());
    const QByteArray text = version.toUtf8();
    if (text.isEmpty() || head.size() + text.size() >= kRecordBytes || text.contains('\0'))
        return false;
    QByteArray record = head + text;
    record.append(kRecordBytes - record.size(), '\0');
    bool found = false;
    for (int at = program.indexOf(head); at >= 0; at = program.indexOf(head, at + 1)) {
        if (at + kRecordBytes > program.size())
            break;
        std::memcpy(program.data() + at, record.constData(), kRecordBytes);
        found = true;
    }
    return found;
}

} // namespace versionstamp
