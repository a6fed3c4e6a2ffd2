// SPDX-License-Identifier: GPL-2.0-or-later
// The capture thread: pulls camera frames, prepares the preview, feeds the encoder during a recording.
#pragma once

#include <QThread>

class CameraThread : public QThread
{
    Q_OBJECT

public:
    explicit CameraThread(QObject *parent = nullptr);

signals:
    // A preview image is ready in the display buffer.
    void camera_thread_signal(int value);

protected:
    void run() override;
};
