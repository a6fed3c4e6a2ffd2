// SPDX-License-Identifier: GPL-2.0-or-later
// What the fuzz targets share: a check that stops the run, and the fuzzer's bytes as the texts a parser takes.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace fuzzsupport {

// A broken promise is a finding like a crash: abort so libFuzzer keeps the input.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

inline QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

// Parsers read replies and files as UTF-8, invalid sequences included.
inline QString text(const uint8_t *data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

} // namespace fuzzsupport
