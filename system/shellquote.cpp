// SPDX-License-Identifier: GPL-2.0-or-later
// Decides whether operator or network text can be placed inside single shell quotes.
#include "shellquote.h"

namespace shellquote {

bool fitsSingleQuotes(const QByteArray &bytes)
{
    for (const char c : bytes) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '\'' || u < 0x20 || u == 0x7f)
            return false;
    }
    return true;
}

} // namespace shellquote
