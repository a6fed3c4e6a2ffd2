// SPDX-License-Identifier: GPL-2.0-or-later
// The pupil photo of a test: the sharpest flash frame of the recording, cropped to both eyes.
#pragma once

#include <QImage>
#include <QString>

#include <cstdint>
#include <mutex>
#include <vector>

// Offered every flash frame by the capture thread, taken once by the GUI
// when the test is saved. Keeps a copy of the best luminance plane only:
// the camera's buffer goes back to the driver right after the offer.
class PupilPhotoPicker
{
public:
    // Forgets the frames of an earlier recording.
    void reset();

    // Keeps the frame when it is sharper than every frame since the reset.
    // The sharpness is worked out before the lock is taken, so the capture
    // thread never waits on the GUI for longer than one copy.
    void offer(const uint8_t *luma, int width, int height);

    // The best frame since the reset cropped to the eyes, then forgotten;
    // a null image when no frame came (the recording failed).
    QImage take();

    // Mean squared difference of neighbouring pixels in the middle of the
    // frame, where the aimed eyes are.
    static uint64_t sharpness(const uint8_t *luma, int width, int height);

private:
    std::mutex m_mutex;
    std::vector<uint8_t> m_luma;
    int m_width = 0;
    int m_height = 0;
    uint64_t m_sharpness = 0;
    bool m_held = false;
};

namespace pupilphoto {

// The part of a grey flash frame around both pupils, which the flash makes
// the brightest spots of the face, widened to a strip three eighths as high
// as it is wide. When no pair of bright spots lies side by side, the middle
// of the frame, where the aiming frame puts the eyes.
QRect eyeRegion(const QImage &frame);

// The eye region of the frame, scaled to at most 640 pixels wide.
QImage cropToEyes(const QImage &frame);

// JPEG bytes of a few tens of kilobytes; empty when encoding fails.
QByteArray encodeJpeg(const QImage &photo);

} // namespace pupilphoto
