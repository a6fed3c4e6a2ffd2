// SPDX-License-Identifier: GPL-2.0-or-later
// Preloaded into the tests of a cross build run in qemu-user, so that QProcess can start programs there.
//
// Qt's process launcher asks the kernel whether it can wait on process file
// descriptors (waitid with P_PIDFD) and, when the answer is yes, starts every
// child with clone(CLONE_PIDFD). qemu-user forwards the question to the
// build machine's kernel, which says yes, but refuses that clone flag itself
// (EINVAL), so no program could be started. Answering the question with "not
// supported" makes Qt start children the classic way, which the emulator runs.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/syscall.h>

#ifndef P_PIDFD
#define P_PIDFD 3
#endif

// The programs a test starts are not emulated (or are emulated afresh):
// they must not inherit this library.
__attribute__((constructor)) static void forgetPreload(void)
{
    unsetenv("LD_PRELOAD");
}

long syscall(long number, ...)
{
    va_list list;
    va_start(list, number);
    long a[6];
    for (int i = 0; i < 6; ++i)
        a[i] = va_arg(list, long);
    va_end(list);
    if (number == SYS_waitid && a[0] == P_PIDFD) {
        errno = EINVAL;
        return -1;
    }
    static long (*next)(long, ...);
    if (!next)
        next = (long (*)(long, ...))dlsym(RTLD_NEXT, "syscall");
    return next(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}
