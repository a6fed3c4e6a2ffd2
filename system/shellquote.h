// SPDX-License-Identifier: GPL-2.0-or-later
// Decides whether operator or network text can be placed inside single shell quotes.
#pragma once

#include <QByteArray>

namespace shellquote {

// True when the bytes can sit between single quotes on a sh command line
// and reach the program unchanged: no single quote (it would end the
// quoting) and no control character (a newline would end the command).
bool fitsSingleQuotes(const QByteArray &bytes);

} // namespace shellquote
