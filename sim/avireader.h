// SPDX-License-Identifier: GPL-2.0-or-later
// Reads back the structure of a RIFF/AVI file, so the simulated analysis server can refuse a broken recording.
#pragma once

#include <QByteArray>
#include <QString>

namespace avireader {

// What a file holds, as far as the server cares.
struct Summary
{
    bool valid = false;
    QString problem; // why the file is not valid, for the log and the refusal
    int frames = 0;  // video frames, counted in the index
    int width = 0;
    int height = 0;
    QByteArray compressor; // the video stream's FOURCC
    quint32 microsecondsPerFrame = 0;
};

// Valid means: a RIFF "AVI " file whose length matches its RIFF header, with
// a header list naming a video stream, a movie list and an "idx1" index that
// agree with each other (every index entry points at a chunk of the same id
// and length, and the frame counts of the main header, the stream header,
// the index and the movie list are one number), and at least one frame.
// Index offsets may count from the file's start or from the movie list.
Summary inspect(const QByteArray &file);

} // namespace avireader
