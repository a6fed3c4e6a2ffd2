// SPDX-License-Identifier: GPL-2.0-or-later
// The process-wide Qt message handler: debug lines to stderr, warnings dropped.
#include "messagehandler.h"

#include <QString>

#include <cstdio>
#include <cstdlib>

void myMessageOutput(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    switch (type) {
    case QtDebugMsg:
    case QtInfoMsg: std::fprintf(stderr, "%s\n", bytes.constData()); break;
    case QtWarningMsg:
        // Qt's own warnings (style sheets, fonts) would drown the device log.
        break;
    case QtCriticalMsg: std::fprintf(stderr, "Critical: %s\n", bytes.constData()); break;
    case QtFatalMsg: std::fprintf(stderr, "Fatal: %s\n", bytes.constData()); std::abort();
    }
}
