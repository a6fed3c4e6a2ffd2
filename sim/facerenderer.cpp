// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated camera's picture: an infrared close-up of a child's face, rendered once per scene.
#include "facerenderer.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

// Geometry of the lens and sensor at the full 1920-pixel width: at the
// working distance the frame is about 38 cm wide, a close-up of the head.
constexpr float kPixelsPerMmAtWorkingDistance = 5.0f;
// The operator keeps the child roughly in view while tilting, so a degree of
// pitch moves the face by much less than the lens's angle would.
constexpr float kPixelsPerDegree = 28.0f;
// The eyes sit a little above the middle of the frame when the aim is level.
constexpr float kEyeRow = 0.45f;

// Light reaching the face, in units where a reflectance of 1 under 1 unit of
// light gives full scale at the default exposure and gain. The room light is
// scaled so that the mean grey level follows the ambient light value.
constexpr float kAmbientAtFull = 1.12f;
constexpr float kAimingLight = 1.0f;
constexpr float kFlashLight = 1.0f;
// The wall behind the child is two or three times farther from the LED.
constexpr float kLedOnWall = 0.12f;
constexpr float kPedestal = 3.0f; // the sensor's black level

// Defocus: the blur circle grows with |1/d - 1/d0|; sigma in pixels at 1920.
constexpr float kFocusSigma = 0.55f;
constexpr float kDefocusSigma = 26.0f;
constexpr float kMaxSigma = 14.0f;

constexpr int kNoiseStrip = 1 << 16;

// Deterministic texture: a value in [-0.5, 0.5] per integer cell.
inline float cellNoise(int x, int y)
{
    uint32_t h = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u;
    h = (h ^ (h >> 13)) * 1274126177u;
    h ^= h >> 16;
    return static_cast<float>(h & 0xffff) * (1.0f / 65535.0f) - 0.5f;
}

// The same, smoothly interpolated along y.
inline float smoothNoise(int x, float y)
{
    const float cell = std::floor(y);
    const float t = y - cell;
    const int row = static_cast<int>(cell);
    return cellNoise(x, row) + (cellNoise(x, row + 1) - cellNoise(x, row)) * t * t * (3.0f - 2.0f * t);
}

inline float square(float value)
{
    return value * value;
}

// 1 inside [from, to], easing to 0 over `soft` on either side.
inline float window(float value, float from, float to, float soft)
{
    if (value < from - soft || value > to + soft)
        return 0.0f;
    if (value < from)
        return 1.0f - (from - value) / soft;
    if (value > to)
        return 1.0f - (value - to) / soft;
    return 1.0f;
}

// The scene in millimetres around the midpoint between the child's eyes, u to
// the right of the image and v downwards. Returns radiance.
class Face
{
public:
    explicit Face(const FaceScene &scene)
    {
        const float near = static_cast<float>(FaceRenderer::kWorkingDistanceMm) / scene.distanceMm;
        const float ambient = kAmbientAtFull * scene.ambientLight / 100.0f;
        const float led = (scene.aimingLight ? kAimingLight : 0.0f) + (scene.flashFrame ? kFlashLight : 0.0f);
        m_faceLight = ambient + led * near * near;
        m_wallLight = ambient + led * kLedOnWall;
        // The pupils open wide in a dim room; infrared does not close them.
        m_pupilRadius = 3.3f - 1.6f * scene.ambientLight / 100.0f;
        // The cornea mirrors the room dimly and the LED brightly: far above
        // full scale, so that the glint stays saturated even when defocused.
        m_glint = 3.0f * ambient + (scene.aimingLight ? 8.0f : 0.0f) + (scene.flashFrame ? 10.0f : 0.0f);
        // The retina reflects the flash straight back through the pupil; the
        // aiming light sits off the lens axis and gives no such reflex.
        m_brightPupil = scene.flashFrame ? 0.8f * kFlashLight * near * near : 0.0f;
    }

    float at(float u, float v) const
    {
        // Nearest surface first: face, ears, hair, neck, clothes, wall.
        if (std::fabs(u) > 130.0f || v < -130.0f)
            return wall(v);
        const float hair = square(u / 82.0f) + square((v + 12.0f) / 104.0f);
        const float face = square(u / 64.0f) + square((v - 14.0f) / 94.0f);
        // The fringe never reaches below v = -20: no need to look for it there.
        if (face < 1.0f && (v > -20.0f || v >= hairline(u)))
            return skin(u, v, face);
        const float earU = std::fabs(u) - 68.0f;
        const float ear = square(earU / 11.0f) + square((v - 8.0f) / 21.0f);
        if (ear < 1.0f && std::fabs(u) > 55.0f)
            return 0.42f * (0.7f + 0.3f * std::sqrt(1.0f - ear)) * m_faceLight;
        if (hair < 1.0f && v < 34.0f + 5.0f * cellNoise(static_cast<int>(u * 1.5f), 7))
            return hairAt(u, v, hair) * m_faceLight;
        if (std::fabs(u) < 32.0f && v > 40.0f && v < 150.0f) {
            // The neck, in the chin's shadow near the top.
            const float round = std::sqrt(std::max(0.0f, 1.0f - square(u / 32.0f)));
            const float shadow = 0.55f + 0.45f * std::min(1.0f, std::max(0.0f, (v - 100.0f) / 25.0f));
            return 0.44f * (0.5f + 0.5f * round) * shadow * m_faceLight;
        }
        if (v > 118.0f && std::fabs(u) < 40.0f + (v - 118.0f) * 1.6f) {
            const float weave = 0.04f * cellNoise(static_cast<int>(u * 2.0f), static_cast<int>(v * 2.0f));
            return (0.3f + weave) * m_faceLight;
        }
        return wall(v);
    }

private:
    float wall(float v) const { return (0.27f + 0.03f * v / 130.0f) * m_wallLight; }

    // Where the fringe of the hair meets the forehead.
    static float hairline(float u)
    {
        return -40.0f + 0.0045f * u * u + 2.5f * cellNoise(static_cast<int>(u * 0.5f), 3);
    }

    static float hairAt(float u, float v, float radius)
    {
        // Strands: thin and long, combed down and outwards from the crown.
        const float combed = u * (1.0f + 0.25f * (v + 110.0f) / 100.0f);
        const float strand = smoothNoise(static_cast<int>(std::floor(combed * 3.3f)), v * 0.2f);
        const float lock = smoothNoise(static_cast<int>(std::floor(combed * 0.4f)), v * 0.04f);
        const float sheen = 0.07f * std::exp(-square((radius - 0.55f) / 0.2f));
        return 0.22f + 0.05f * strand + 0.06f * lock + sheen;
    }

    float skin(float u, float v, float face) const
    {
        // Soft shading of a rounded face lit from the camera.
        const float facing = std::sqrt(std::sqrt(std::max(0.0f, 1.0f - face)));
        float reflectance = 0.52f * (0.45f + 0.55f * facing);
        reflectance *= 1.0f + 0.05f * cellNoise(static_cast<int>(u * 4.0f), static_cast<int>(v * 4.0f));
        // Darker where the fringe shades the forehead.
        if (v < -10.0f)
            reflectance *= 1.0f - 0.25f * std::exp(-(v - hairline(u)) / 3.0f);

        const float side = u < 0.0f ? -1.0f : 1.0f;
        const float du = u - side * 26.0f; // from the nearer eye's centre

        if (v > -2.0f && v < 50.0f && std::fabs(u) < 22.0f)
            reflectance *= nose(u, v);
        if (v > -32.0f && v < 20.0f && std::fabs(du) < 26.0f) {
            // The socket is a soft hollow around the eye.
            reflectance *= 1.0f - 0.14f * std::exp(-(square(du / 13.0f) + square((v + 2.0f) / 8.0f)));
            if (v < 12.0f && std::fabs(du) < 20.0f)
                return eyeRegion(du, v, reflectance);
        }
        if (v > 56.0f && v < 80.0f && std::fabs(u) < 26.0f)
            reflectance *= mouth(u, v);
        if (v > 15.0f && v < 55.0f && std::fabs(std::fabs(u) - 36.0f) < 20.0f)
            reflectance *= 1.0f + 0.06f * std::exp(-(square(std::fabs(u) - 36.0f) + square(v - 33.0f)) / 150.0f);
        return reflectance * m_faceLight;
    }

    static float nose(float u, float v)
    {
        const float along = window(v, 6.0f, 38.0f, 6.0f);
        float factor = 1.0f + 0.08f * along * std::exp(-square(u / 4.0f));
        factor *= 1.0f - 0.16f * along * std::exp(-square((std::fabs(u) - 11.0f) / 3.5f));
        factor *= 1.0f + 0.10f * std::exp(-(square(u) + square(v - 36.0f)) / 40.0f);
        const float nostril = square((std::fabs(u) - 7.0f) / 4.2f) + square((v - 44.0f) / 2.4f);
        if (nostril < 1.0f)
            factor *= 0.3f + 0.5f * nostril;
        return factor;
    }

    static float mouth(float u, float v)
    {
        float factor = 1.0f;
        const float lips = square(u / 20.0f) + square((v - 68.0f) / 5.5f);
        if (lips < 1.0f)
            factor *= 0.9f + 0.1f * lips;
        const float line = 68.0f - 3.0f * square(u / 21.0f);
        if (std::fabs(u) < 20.0f)
            factor *= 1.0f - 0.6f * std::exp(-square((v - line) / 0.9f)) * (1.0f - square(u / 20.0f));
        return factor;
    }

    float eyeRegion(float du, float v, float reflectance) const
    {
        // The brow: an arc of short dark hair.
        const float browLine = -17.0f + 0.015f * square(du + 2.0f);
        const float browHalf = 2.2f * std::sqrt(std::max(0.0f, 1.0f - square((du + 1.0f) / 16.0f)));
        if (std::fabs(v - browLine) < browHalf) {
            const float strand = cellNoise(static_cast<int>(du * 2.5f), static_cast<int>(v * 0.8f));
            reflectance *= 0.5f + 0.15f * strand;
        }

        constexpr float halfWidth = 12.5f;
        if (std::fabs(du) >= halfWidth)
            return reflectance * m_faceLight;
        const float t = 1.0f - square(du / halfWidth);
        const float upperLid = -6.0f * t;
        const float lowerLid = 4.2f * t;
        if (v <= upperLid || v >= lowerLid) {
            if (v <= upperLid)
                reflectance *= 1.0f - 0.18f * t * std::exp(-square((v - upperLid + 2.2f) / 1.4f)); // the lid's fold
            return reflectance * m_faceLight;
        }

        // The eyeball, seen between the lids.
        const float iu = du;
        const float iv = v + 0.5f;
        const float r = std::sqrt(iu * iu + iv * iv);
        float radiance;
        if (r < m_pupilRadius) {
            radiance = 0.04f * m_faceLight + m_brightPupil * (1.0f - 0.15f * square(r / m_pupilRadius));
        } else if (r < 5.9f) {
            // In infrared every iris looks light grey, with its fibres.
            const float angle = std::atan2(iv, iu);
            float iris = 0.30f + 0.07f * cellNoise(static_cast<int>(angle * 28.0f), static_cast<int>(r * 1.5f));
            if (r > 5.2f)
                iris *= 0.65f;
            radiance = iris * m_faceLight;
        } else {
            radiance = 0.5f * (0.7f + 0.3f * t) * m_faceLight;
        }
        if (v - upperLid < 0.9f)
            radiance *= 0.3f; // lashes
        else if (lowerLid - v < 0.5f)
            radiance *= 0.7f;

        const float glint = square(iu - 0.7f) + square(iv + 0.9f);
        if (glint < 0.5f * 0.5f)
            radiance = std::max(radiance, m_glint);
        return radiance;
    }

    float m_faceLight = 0.0f;
    float m_wallLight = 0.0f;
    float m_pupilRadius = 3.0f;
    float m_glint = 0.0f;
    float m_brightPupil = 0.0f;
};

std::vector<float> gaussianKernel(float sigma)
{
    const int radius = std::max(1, static_cast<int>(std::ceil(3.0f * sigma)));
    std::vector<float> kernel(2 * radius + 1);
    float sum = 0.0f;
    for (int i = -radius; i <= radius; ++i) {
        kernel[i + radius] = std::exp(-0.5f * square(i / sigma));
        sum += kernel[i + radius];
    }
    for (float &weight : kernel)
        weight /= sum;
    return kernel;
}

// Separable Gaussian blur, edges clamped. The vertical pass runs row by row
// so that it streams through memory.
void gaussianBlur(std::vector<float> &image, int width, int height, float sigma)
{
    const std::vector<float> kernel = gaussianKernel(sigma);
    const int radius = static_cast<int>(kernel.size() / 2);

    std::vector<float> padded(width + 2 * radius);
    for (int y = 0; y < height; ++y) {
        float *row = image.data() + static_cast<size_t>(y) * width;
        std::fill(padded.begin(), padded.begin() + radius, row[0]);
        std::copy(row, row + width, padded.begin() + radius);
        std::fill(padded.end() - radius, padded.end(), row[width - 1]);
        for (int x = 0; x < width; ++x) {
            const float *source = padded.data() + x;
            float sum = 0.0f;
            for (size_t k = 0; k < kernel.size(); ++k)
                sum += kernel[k] * source[k];
            row[x] = sum;
        }
    }

    std::vector<float> result(image.size());
    for (int y = 0; y < height; ++y) {
        float *out = result.data() + static_cast<size_t>(y) * width;
        std::fill(out, out + width, 0.0f);
        for (int k = -radius; k <= radius; ++k) {
            const float *in = image.data() + static_cast<size_t>(std::clamp(y + k, 0, height - 1)) * width;
            const float weight = kernel[k + radius];
            for (int x = 0; x < width; ++x)
                out[x] += weight * in[x];
        }
    }
    image.swap(result);
}

// A box of 2n+1 taps plus a fractional weight a on the next tap at each end:
// its variance, and so the blur, grows smoothly with a.
struct Box
{
    int n = 0;
    float a = 0.0f;
    float norm = 1.0f;
};

Box boxWithVariance(float variance)
{
    Box box;
    while ((box.n + 1) * (box.n + 2) / 3.0f <= variance)
        ++box.n;
    const float n = static_cast<float>(box.n);
    const float inner = n * (n + 1.0f) * (2.0f * n + 1.0f) / 3.0f;
    box.a =
        std::clamp((variance * (2.0f * n + 1.0f) - inner) / (2.0f * square(n + 1.0f) - 2.0f * variance), 0.0f, 1.0f);
    box.norm = 1.0f / (2.0f * n + 1.0f + 2.0f * box.a);
    return box;
}

void boxPass(std::vector<float> &image, std::vector<float> &scratch, int width, int height, const Box &box)
{
    const int reach = box.n + 1;
    std::vector<float> padded(width + 2 * reach);
    for (int y = 0; y < height; ++y) {
        float *row = image.data() + static_cast<size_t>(y) * width;
        std::fill(padded.begin(), padded.begin() + reach, row[0]);
        std::copy(row, row + width, padded.begin() + reach);
        std::fill(padded.end() - reach, padded.end(), row[width - 1]);
        const float *p = padded.data() + reach;
        float sum = 0.0f;
        for (int k = -box.n; k <= box.n; ++k)
            sum += p[k];
        for (int x = 0; x < width; ++x) {
            row[x] = (sum + box.a * (p[x - reach] + p[x + reach])) * box.norm;
            sum += p[x + reach] - p[x - box.n];
        }
    }

    auto line = [&](int y) {
        return image.data() + static_cast<size_t>(std::clamp(y, 0, height - 1)) * width;
    };
    std::vector<float> sum(width, 0.0f);
    for (int k = -box.n; k <= box.n; ++k) {
        const float *in = line(k);
        for (int x = 0; x < width; ++x)
            sum[x] += in[x];
    }
    for (int y = 0; y < height; ++y) {
        float *out = scratch.data() + static_cast<size_t>(y) * width;
        const float *before = line(y - reach);
        const float *after = line(y + reach);
        const float *leaving = line(y - box.n);
        for (int x = 0; x < width; ++x) {
            out[x] = (sum[x] + box.a * (before[x] + after[x])) * box.norm;
            sum[x] += after[x] - leaving[x];
        }
    }
    image.swap(scratch);
}

// Defocus blur. Small blurs use the exact kernel; large ones three box
// passes of the same variance, whose cost does not grow with the blur.
void blur(std::vector<float> &image, int width, int height, float sigma)
{
    if (sigma <= 1.5f) {
        gaussianBlur(image, width, height, sigma);
        return;
    }
    const Box box = boxWithVariance(sigma * sigma / 3.0f);
    std::vector<float> scratch(image.size());
    for (int pass = 0; pass < 3; ++pass)
        boxPass(image, scratch, width, height, box);
}

inline uint8_t noisy(uint8_t value, int8_t noise)
{
    const int sum = value + noise;
    return static_cast<uint8_t>(sum < 0 ? 0 : (sum > 255 ? 255 : sum));
}

// The per-frame work. Fixed blocks of 16 and restrict let the compiler turn it
// into vector code at -O2 without run-time checks.
void addNoise(const uint8_t *__restrict in, const int8_t *__restrict noise, uint8_t *__restrict out, int count)
{
    int x = 0;
    for (; x + 16 <= count; x += 16) {
        for (int k = 0; k < 16; ++k)
            out[x + k] = noisy(in[x + k], noise[x + k]);
    }
    for (; x < count; ++x)
        out[x] = noisy(in[x], noise[x]);
}

} // namespace

bool FaceScene::operator==(const FaceScene &other) const
{
    return distanceMm == other.distanceMm && pitchDegrees == other.pitchDegrees && ambientLight == other.ambientLight &&
           aimingLight == other.aimingLight && flashFrame == other.flashFrame && exposure == other.exposure &&
           gain == other.gain;
}

FaceRenderer::FaceRenderer(int width, int height)
    : m_width(width)
    , m_height(height)
{
}

FaceScene FaceRenderer::quantised(const FaceScene &scene)
{
    FaceScene result = scene;
    // 10 mm changes the blur by about a quarter of a pixel at the working
    // distance: finer steps would only cost renders.
    result.distanceMm = std::clamp((scene.distanceMm + 5) / 10 * 10, 300, 5000);
    result.pitchDegrees = std::clamp(scene.pitchDegrees, -60, 60);
    result.ambientLight = std::clamp(scene.ambientLight, 0, 100);
    result.exposure = std::max(scene.exposure, 0);
    result.gain = std::max(scene.gain, 0);
    return result;
}

int FaceRenderer::renderCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_renderCount;
}

std::shared_ptr<const FaceRenderer::Picture> FaceRenderer::picture(const FaceScene &scene)
{
    const FaceScene key = quantised(scene);
    // Held while rendering: only the capture thread asks, and a second caller
    // wants the same picture anyway.
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto it = m_cache.begin(); it != m_cache.end(); ++it) {
        if ((*it)->scene == key) {
            m_cache.splice(m_cache.begin(), m_cache, it);
            return m_cache.front();
        }
    }
    m_cache.push_front(render(key));
    ++m_renderCount;
    if (m_cache.size() > static_cast<size_t>(kCachedScenes))
        m_cache.pop_back();
    return m_cache.front();
}

std::shared_ptr<const FaceRenderer::Picture> FaceRenderer::render(const FaceScene &scene) const
{
    const float widthScale = m_width / 1920.0f;
    const float pixelsPerMm =
        kPixelsPerMmAtWorkingDistance * widthScale * kWorkingDistanceMm / static_cast<float>(scene.distanceMm);
    const float centreX = m_width * 0.5f;
    const float centreY = m_height * kEyeRow + scene.pitchDegrees * kPixelsPerDegree * widthScale;

    const Face face(scene);
    std::vector<float> radiance(static_cast<size_t>(m_width) * m_height);
    std::vector<float> columnU(m_width);
    for (int x = 0; x < m_width; ++x)
        columnU[x] = (x + 0.5f - centreX) / pixelsPerMm;
    for (int y = 0; y < m_height; ++y) {
        const float v = (y + 0.5f - centreY) / pixelsPerMm;
        float *row = radiance.data() + static_cast<size_t>(y) * m_width;
        for (int x = 0; x < m_width; ++x)
            row[x] = face.at(columnU[x], v);
    }

    const float defocus = kDefocusSigma * std::fabs(static_cast<float>(kWorkingDistanceMm) / scene.distanceMm - 1.0f);
    const float sigma = std::min(kMaxSigma, std::sqrt(square(kFocusSigma) + square(defocus))) * widthScale;
    blur(radiance, m_width, m_height, sigma);

    auto picture = std::make_shared<Picture>();
    picture->scene = scene;
    picture->luma.resize(radiance.size());
    const float scale = 255.0f * scene.exposure / 225.0f * scene.gain;
    double sum = 0.0;
    for (size_t i = 0; i < radiance.size(); ++i) {
        const float value = std::min(255.0f, kPedestal + scale * radiance[i]);
        picture->luma[i] = static_cast<uint8_t>(value + 0.5f);
        sum += picture->luma[i];
    }

    // Read noise plus shot noise at the frame's mean level, amplified by the
    // gain; one level per picture is close enough for a preview and keeps
    // the per-frame work to an addition.
    const double mean = sum / radiance.size();
    const double noiseSigma = std::max(1, scene.gain) * std::sqrt(0.5 + 0.015 * mean);
    std::mt19937 generator(12345);
    std::normal_distribution<double> normal(0.0, noiseSigma);
    picture->noise.resize(kNoiseStrip + m_width);
    for (int8_t &sample : picture->noise)
        sample = static_cast<int8_t>(std::clamp(std::lround(normal(generator)), -127L, 127L));
    return picture;
}

void FaceRenderer::expose(const FaceScene &scene, uint64_t frameNumber, uint8_t *luma)
{
    const std::shared_ptr<const Picture> source = picture(scene);
    const int width = m_width;
    const int height = m_height;
    // Each row takes its noise from a random place in the strip.
    uint64_t state = frameNumber * 0x9E3779B97F4A7C15ull + 0x632BE59BD9B4E019ull;
    for (int y = 0; y < height; ++y) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        addNoise(source->luma.data() + static_cast<size_t>(y) * width, source->noise.data() + (state % kNoiseStrip),
                 luma + static_cast<size_t>(y) * width, width);
    }
}
