// SPDX-License-Identifier: GPL-2.0-or-later
// The recording thread: opens the camera, then writes each recording's encoded frames to the AVI file.
#pragma once

#include <QThread>

class VideoThread : public QThread
{
    Q_OBJECT

public:
    explicit VideoThread(QObject *parent = nullptr);

signals:
    // A recording the GUI asked for is finished and its file closed.
    void video_thread_signal(int value);

protected:
    void run() override;

private:
    void record(bool reportWhenDone);
};
