// SPDX-License-Identifier: GPL-2.0-or-later
// Readers of a named item of a server's JSON reply, as parsed by cJSON.
#include "jsonreply.h"

#include <QtGlobal>

#include <cjson/cJSON.h>

namespace jsonreply {

namespace {

const cJSON *item(const cJSON *object, const char *name, const QString &reply)
{
    const cJSON *found = object ? cJSON_GetObjectItem(object, name) : nullptr;
    if (!found)
        qDebug("cJSON_GetObjectItem Error: %s %s", name, reply.toLocal8Bit().constData());
    return found;
}

} // namespace

bool string(const cJSON *object, const char *name, const QString &reply, QString &value)
{
    const cJSON *found = item(object, name, reply);
    if (!found)
        return false;
    char *text = cJSON_PrintUnformatted(found);
    if (!text)
        return false;
    value = QString::fromUtf8(text);
    cJSON_free(text);
    return true;
}

bool stringValue(const cJSON *object, const char *name, const QString &reply, QString &value)
{
    const cJSON *found = item(object, name, reply);
    if (!cJSON_IsString(found) || !found->valuestring)
        return false;
    value = QString::fromUtf8(found->valuestring);
    return true;
}

bool intValue(const cJSON *object, const char *name, const QString &reply, int &value)
{
    const cJSON *found = item(object, name, reply);
    if (!cJSON_IsNumber(found))
        return false;
    value = found->valueint;
    return true;
}

} // namespace jsonreply
