// SPDX-License-Identifier: GPL-2.0-or-later
// Start-up shared by the fuzz targets: the parsers' log lines would cost more than the parsing.
#include <QtGlobal>

#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}
