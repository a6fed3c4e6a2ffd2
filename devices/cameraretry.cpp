// SPDX-License-Identifier: GPL-2.0-or-later
// The budget of automatic program restarts after the camera stops delivering frames.
#include "cameraretry.h"

#include <QDebug>
#include <QFile>

namespace cameraretry {

int get(const std::string &path)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return 2;
    bool ok = false;
    const int count = QString::fromUtf8(file.readAll()).trimmed().toInt(&ok);
    return ok ? count : 2;
}

void set(const std::string &path, int count)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        qDebug("can not open file for write");
        return;
    }
    file.write(QByteArray::number(count));
}

} // namespace cameraretry
