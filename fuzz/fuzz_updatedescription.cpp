// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any version description is read without harm, and only a four-field one is taken.
#include "firmwareupdate.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzsupport::text(data, size);
    firmwareupdate::Description description;
    const int fields = firmwareupdate::parseDescription(text, description);
    require(fields == text.count(QLatin1Char(';')) + 1);
    if (fields != 4) {
        require(description.version.isNull() && description.file.isNull() && description.size == 0);
        return 0;
    }
    require(!description.file.contains(QLatin1Char(';')) && description.md5 == description.md5.trimmed());
    // The file it names is fetched from under the region's folder.
    const QString url = firmwareupdate::fileUrl(QStringLiteral("http://127.0.0.1/"), QStringLiteral("us"),
                                                description.file);
    require(url.startsWith(QLatin1String("http://127.0.0.1/")));
    return 0;
}
