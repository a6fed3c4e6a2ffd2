// SPDX-License-Identifier: GPL-2.0-or-later
// The sensor polling thread: distance and pitch while the operator aims.
#pragma once

#include <QThread>

class HWThread : public QThread
{
    Q_OBJECT

public:
    explicit HWThread(QObject *parent = nullptr);

protected:
    void run() override;
};
