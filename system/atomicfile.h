// SPDX-License-Identifier: GPL-2.0-or-later
// Whole-file replacement that survives a power cut: old content or new, never a torn file.
#pragma once

#include <QByteArray>
#include <QString>

namespace atomicfile {

// Writes the bytes to a temporary file beside the target, syncs it, renames it
// over the target and syncs the folder. Returns false, leaving the old file in
// place, when any step fails.
bool write(const QString &path, const QByteArray &bytes);

} // namespace atomicfile
