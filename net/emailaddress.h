// SPDX-License-Identifier: GPL-2.0-or-later
// Whether a typed text has the shape of one e-mail address, before the settings keep it.
#pragma once

#include <QString>

namespace emailaddress {

// The factory value of the address setting; it means that no address is set.
constexpr char kNoAddress[] = "Please Input Email";

// One address of the common shape: a local part of letters, digits and
// .!#$%&'*+/=?^_`{}~- (no leading, trailing or doubled dot), "@", and a
// domain of at least two dot-separated labels of letters, digits and inner
// hyphens, the last of them at least two letters. No blanks, no quoting.
bool isWellFormed(const QString &address);

} // namespace emailaddress
