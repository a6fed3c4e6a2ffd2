// SPDX-License-Identifier: GPL-2.0-or-later
// The pupil photo of a test: the sharpest flash frame of the recording, cropped to both eyes.
#include "pupilphoto.h"

#include <QBuffer>
#include <QImageWriter>

#include <algorithm>
#include <cstring>
#include <cstdlib>

void PupilPhotoPicker::reset()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_held = false;
    m_sharpness = 0;
}

void PupilPhotoPicker::offer(const uint8_t *luma, int width, int height)
{
    if (!luma || width <= 0 || height <= 0)
        return;
    const uint64_t figure = sharpness(luma, width, height);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_held && figure <= m_sharpness)
        return;
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height);
    m_luma.resize(bytes);
    std::memcpy(m_luma.data(), luma, bytes);
    m_width = width;
    m_height = height;
    m_sharpness = figure;
    m_held = true;
}

QImage PupilPhotoPicker::take()
{
    QImage frame;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_held)
            return QImage();
        m_held = false;
        frame = QImage(m_width, m_height, QImage::Format_Grayscale8);
        for (int y = 0; y < m_height; ++y)
            std::memcpy(frame.scanLine(y), m_luma.data() + static_cast<size_t>(y) * m_width, m_width);
    }
    return pupilphoto::cropToEyes(frame);
}

uint64_t PupilPhotoPicker::sharpness(const uint8_t *luma, int width, int height)
{
    // The middle half in both directions, every second row: enough to tell
    // a blurred frame from a sharp one at a fraction of a frame's copy.
    uint64_t sum = 0;
    uint64_t count = 0;
    for (int y = height / 4; y < height * 3 / 4; y += 2) {
        const uint8_t *row = luma + static_cast<size_t>(y) * width;
        for (int x = width / 4; x + 1 < width * 3 / 4; ++x) {
            const int difference = row[x + 1] - row[x];
            sum += static_cast<uint64_t>(difference * difference);
            ++count;
        }
    }
    return count ? sum * 1000 / count : 0;
}

namespace pupilphoto {

namespace {

constexpr int kCell = 8;
constexpr int kWidestPhoto = 640;

QRect stripAround(int centreX, int centreY, int width, const QSize &frame)
{
    width = std::min(width, frame.width());
    const int height = std::min(width * 3 / 8, frame.height());
    const int left = std::clamp(centreX - width / 2, 0, frame.width() - width);
    const int top = std::clamp(centreY - height / 2, 0, frame.height() - height);
    return QRect(left, top, width, height);
}

} // namespace

QRect eyeRegion(const QImage &frame)
{
    const QImage grey = frame.convertToFormat(QImage::Format_Grayscale8);
    const int columns = grey.width() / kCell;
    const int rows = grey.height() / kCell;
    const QRect middle = stripAround(grey.width() / 2, grey.height() / 2, grey.width() / 2, grey.size());
    if (columns < 8 || rows < 4)
        return middle;

    // Cell means: a pupil lit by the flash covers a few cells, a single hot
    // pixel of noise does not.
    std::vector<int> cells(static_cast<size_t>(columns) * rows, 0);
    for (int y = 0; y < rows * kCell; ++y) {
        const uchar *line = grey.constScanLine(y);
        int *cellRow = cells.data() + static_cast<size_t>(y / kCell) * columns;
        for (int x = 0; x < columns * kCell; ++x)
            cellRow[x / kCell] += line[x];
    }
    for (int &cell : cells)
        cell /= kCell * kCell;
    std::vector<int> sorted(cells);
    std::nth_element(sorted.begin(), sorted.begin() + sorted.size() / 2, sorted.end());
    const int median = sorted[sorted.size() / 2];

    const auto brightest = std::max_element(cells.begin(), cells.end());
    const int first = static_cast<int>(brightest - cells.begin());
    const int x1 = first % columns;
    const int y1 = first / columns;
    if (*brightest < median + 32)
        return middle;

    // The other pupil: beside the first at a plausible eye distance, level
    // with it within a quarter of that distance, and nearly as bright.
    const int nearest = std::max(2, columns * 6 / 100);
    const int farthest = columns / 2;
    int second = -1;
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            const int dx = std::abs(x - x1);
            if (dx < nearest || dx > farthest || std::abs(y - y1) * 4 > dx)
                continue;
            const int index = y * columns + x;
            if (second < 0 || cells[static_cast<size_t>(index)] > cells[static_cast<size_t>(second)])
                second = index;
        }
    }
    if (second < 0 || cells[static_cast<size_t>(second)] - median < (*brightest - median) / 2)
        return middle;
    const int x2 = second % columns;
    const int y2 = second / columns;
    const int centreX = (x1 + x2) * kCell / 2 + kCell / 2;
    const int centreY = (y1 + y2) * kCell / 2 + kCell / 2;
    const int between = std::abs(x1 - x2) * kCell;
    return stripAround(centreX, centreY, std::max(between * 22 / 10, 16 * kCell), grey.size());
}

QImage cropToEyes(const QImage &frame)
{
    if (frame.isNull())
        return QImage();
    QImage eyes = frame.copy(eyeRegion(frame)).convertToFormat(QImage::Format_Grayscale8);
    if (eyes.width() > kWidestPhoto)
        eyes = eyes.scaledToWidth(kWidestPhoto, Qt::SmoothTransformation);
    return eyes;
}

QByteArray encodeJpeg(const QImage &photo)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(85);
    if (photo.isNull() || !writer.write(photo))
        return QByteArray();
    return bytes;
}

} // namespace pupilphoto
