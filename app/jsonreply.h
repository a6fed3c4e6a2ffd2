// SPDX-License-Identifier: GPL-2.0-or-later
// Readers of a named item of a server's JSON reply, as parsed by cJSON.
#pragma once

#include <QString>

struct cJSON;

namespace jsonreply {

// Each returns false and leaves the value alone when the object is null, the
// item is missing (printing the reply, for the log) or of another kind.
// string gives the item's JSON text, stringValue the text of a string item,
// intValue a number as cJSON clamped it to an int.
bool string(const cJSON *object, const char *name, const QString &reply, QString &value);
bool stringValue(const cJSON *object, const char *name, const QString &reply, QString &value);
bool intValue(const cJSON *object, const char *name, const QString &reply, int &value);

} // namespace jsonreply
