// SPDX-License-Identifier: GPL-2.0-or-later
// The process-wide Qt message handler: debug lines to stderr, warnings dropped.
#pragma once

#include <QtGlobal>

class QMessageLogContext;
class QString;

void myMessageOutput(QtMsgType type, const QMessageLogContext &context, const QString &text);
