// SPDX-License-Identifier: GPL-2.0-or-later
// The budget of automatic program restarts after the camera stops delivering frames.
#pragma once

#include <string>

namespace cameraretry {

// The count in the file; 2 when the file is missing or holds no number. The
// file lives in /tmp, so every boot starts with a fresh budget.
int get(const std::string &path);
// Replaces the file's content with the count.
void set(const std::string &path, int count);

} // namespace cameraretry
