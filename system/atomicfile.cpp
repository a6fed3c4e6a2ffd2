// SPDX-License-Identifier: GPL-2.0-or-later
// Whole-file replacement that survives a power cut: old content or new, never a torn file.
#include "atomicfile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace atomicfile {

namespace {

// The rename is only durable once the directory entry itself reaches the disk;
// a failure here is not worth failing the write for, the data is already safe.
void syncDirectory(const QString &path)
{
    const QByteArray dir = QFile::encodeName(QFileInfo(path).absolutePath());
    const int fd = ::open(dir.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

bool write(const QString &path, const QByteArray &bytes)
{
    // QSaveFile writes a temporary file in the same folder, syncs it on commit
    // and renames it over the target.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // QSaveFile buffers, and its commit renames even when the buffered data
    // could not all be written (a full disk, a size limit): the write must be
    // pushed out and checked here, before the rename can happen.
    const bool written = file.write(bytes) == bytes.size() && file.flush() && file.error() == QFileDevice::NoError;
    if (!written) {
        file.cancelWriting();
        file.commit();
        return false;
    }
    if (!file.commit())
        return false;
    syncDirectory(path);
    return true;
}

} // namespace atomicfile
