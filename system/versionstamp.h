// SPDX-License-Identifier: GPL-2.0-or-later
// The program's version, kept in a fixed-size record that a copy of the program can be restamped in.
#pragma once

#include <QByteArray>
#include <QString>

namespace versionstamp {

// The version this program was built as ("0.0.1" unless the build or a
// restamp said otherwise).
QString builtVersion();

// Rewrites the version record inside a copy of this program's file, keeping
// its size, so that the copy reports `version`. False when the copy holds no
// record or the version does not fit (at most 40 bytes of UTF-8).
bool restamp(QByteArray &program, const QString &version);

} // namespace versionstamp
