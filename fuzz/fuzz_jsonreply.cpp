// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any JSON reply, well formed or not, is read item by item without harm.
#include "cloudprintform.h"
#include "jsonreply.h"
#include "fuzzsupport.h"

#include <QList>

#include <cjson/cJSON.h>

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzzsupport::bytes(data, size);
    const QString reply = QString::fromUtf8(bytes);
    cJSON *root = cJSON_ParseWithLength(bytes.constData(), bytes.size());

    // Every item the reply has, and names it has not; a parse failure gives a null object.
    QList<QByteArray> names{"code", "msg", "data", ""};
    for (const cJSON *child = root ? root->child : nullptr; child; child = child->next) {
        if (child->string)
            names << QByteArray(child->string);
    }
    for (const QByteArray &name : names) {
        QString json;
        if (jsonreply::string(root, name.constData(), reply, json)) {
            // The item's text is JSON again.
            const QByteArray again = json.toUtf8();
            cJSON *reparsed = cJSON_ParseWithLength(again.constData(), again.size());
            require(reparsed != nullptr);
            cJSON_Delete(reparsed);
        }
        QString text = QStringLiteral("unset");
        if (!jsonreply::stringValue(root, name.constData(), reply, text))
            require(text == QLatin1String("unset"));
        int number = 12345;
        if (!jsonreply::intValue(root, name.constData(), reply, number))
            require(number == 12345);
    }

    cloudprintform::accepted(reply);
    cJSON_Delete(root);
    return 0;
}
