// SPDX-License-Identifier: GPL-2.0-or-later
// Records every fsync and fdatasync of the test program: the file and its size at that moment.
#pragma once

// Include in one source file of a test program only: it defines the two
// calls, so that the program's own syncs land here first and the tests see
// what was synced without tracing the process; the real call follows.

#include <QByteArray>
#include <QFile>
#include <QString>

#include <vector>

#include <dlfcn.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

struct Sync
{
    QString path;
    qint64 size;
};

inline std::vector<Sync> s_syncs;

namespace syncrecorder {

inline void record(int fd)
{
    char target[PATH_MAX] = {};
    const QByteArray link = QByteArrayLiteral("/proc/self/fd/") + QByteArray::number(fd);
    const ssize_t length = ::readlink(link.constData(), target, sizeof target - 1);
    struct stat status = {};
    ::fstat(fd, &status);
    s_syncs.push_back({QFile::decodeName(QByteArray(target, length > 0 ? int(length) : 0)), qint64(status.st_size)});
}

template <class Function> Function nextDefinition(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace syncrecorder

extern "C" int fdatasync(int fd)
{
    static const auto real = syncrecorder::nextDefinition<int (*)(int)>("fdatasync");
    syncrecorder::record(fd);
    return real(fd);
}

extern "C" int fsync(int fd)
{
    static const auto real = syncrecorder::nextDefinition<int (*)(int)>("fsync");
    syncrecorder::record(fd);
    return real(fd);
}
