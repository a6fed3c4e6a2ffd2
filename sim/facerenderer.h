// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated camera's picture: an infrared close-up of a child's face, rendered once per scene.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

// What the sensor sees in one frame. Brightness units follow the driver's
// controls: exposure in lines, gain as a plain multiplier.
struct FaceScene
{
    int distanceMm = 1080; // lens to the child's eyes
    int pitchDegrees = 0;  // device tilt, positive = nose up
    int ambientLight = 10; // room light, 0 (dark) to 100 (daylight)
    bool aimingLight = false;
    bool flashFrame = false; // lit by the recording's flash: the pupils glow
    int exposure = 225;
    int gain = 1;

    bool operator==(const FaceScene &other) const;
    bool operator!=(const FaceScene &other) const { return !(*this == other); }
};

// Rendering a whole frame takes tens of milliseconds, far more than a frame
// period, so each scene is rendered once at a quantised resolution and kept;
// a frame is then a copy of the cached picture with fresh sensor noise.
// Thread-safe.
class FaceRenderer
{
public:
    static constexpr int kWorkingDistanceMm = 1080;
    // Enough for the two phases of a flash recording and a little jitter of the
    // distance around a quantisation step.
    static constexpr int kCachedScenes = 4;

    FaceRenderer(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }

    // Writes width x height luminance bytes of one exposure: the scene plus
    // noise seeded by frameNumber, so consecutive frames differ.
    void expose(const FaceScene &scene, uint64_t frameNumber, uint8_t *luma);

    // Scenes rendered from scratch so far (cache misses).
    int renderCount() const;

    // The detail the renderer distinguishes: nearby values share a picture.
    static FaceScene quantised(const FaceScene &scene);

private:
    struct Picture
    {
        FaceScene scene;
        std::vector<uint8_t> luma;
        std::vector<int8_t> noise; // a strip of sensor noise for this signal level
    };

    std::shared_ptr<const Picture> picture(const FaceScene &scene);
    std::shared_ptr<const Picture> render(const FaceScene &scene) const;

    const int m_width;
    const int m_height;
    mutable std::mutex m_mutex;
    std::list<std::shared_ptr<const Picture>> m_cache; // most recently used first
    int m_renderCount = 0;
};
