// SPDX-License-Identifier: GPL-2.0-or-later
// The preview image and its brightness and focus figures, and the 16-bit to YUV conversion.
#include "previewconversion.h"

#include <QTest>

#include <vector>

class TestPreviewConversion : public QObject
{
    Q_OBJECT

private slots:
    // Sizes the frame cannot fill, and a one-row preview where nothing has
    // an up-left neighbour, count nothing.
    void degenerateSizesLeaveTheFiguresAtZero_data()
    {
        QTest::addColumn<int>("previewWidth");
        QTest::addColumn<int>("previewHeight");
        QTest::newRow("preview wider than the frame") << 16 << 2;
        QTest::newRow("preview rows beyond the frame") << 4 << 4;
        QTest::newRow("no preview") << 0 << 0;
        QTest::newRow("one preview row") << 4 << 1;
    }

    void degenerateSizesLeaveTheFiguresAtZero()
    {
        QFETCH(int, previewWidth);
        QFETCH(int, previewHeight);
        std::vector<uint8_t> frame(8 * 2 * 3 / 2, 90);
        std::vector<uint8_t> display(2 * 8 * 2, 7);
        const PreviewStatistics statistics =
            convert_raw_to_img_buffer_scale(frame.data(), display.data(), 8, 2, previewWidth, previewHeight);
        QCOMPARE(statistics.brightness, 0u);
        QCOMPARE(statistics.contrast, 0u);
        QCOMPARE(int(display[0]), previewHeight == 1 ? 90 : 7);
    }

    void handComputedFrame()
    {
        // An 8 x 6 frame whose luminance at (row r, column c) is 10 r + c,
        // previewed at 4 x 3: every second pixel of rows 0, 2 and 4.
        const int width = 8;
        const int height = 6;
        std::vector<uint8_t> frame(width * height * 3 / 2, 128);
        for (int r = 0; r < height; ++r)
            for (int c = 0; c < width; ++c)
                frame[r * width + c] = static_cast<uint8_t>(10 * r + c);
        std::vector<uint8_t> display(2 * width * height, 0xee);

        const PreviewStatistics statistics =
            convert_raw_to_img_buffer_scale(frame.data(), display.data(), width, height, 4, 3);

        const uint8_t preview[] = {0, 2, 4, 6, 20, 22, 24, 26, 40, 42, 44, 46};
        for (int k = 0; k < 12; ++k)
            QCOMPARE(int(display[k]), int(preview[k]));
        // The luminance plane, whole, in the second half of the display buffer.
        QVERIFY(std::equal(frame.begin(), frame.begin() + width * height, display.begin() + width * height));

        // Indexes 5 to 11 are counted. Their up-left neighbours (k - 5):
        // 22-0, 24-2, 26-4 | 40-6 (row wrap: the last pixel of the first
        // row), 42-20, 44-22, 46-24. Differences 22 22 22 34 22 22 22.
        // Sum of the counted pixels: 22+24+26+40+42+44+46 = 244; 244 / 7 = 34.
        // Squares: 6 x 484 + 1156 = 4060; 4060 / 7 = 580.
        QCOMPARE(statistics.brightness, 34u);
        QCOMPARE(statistics.contrast, 580u);
    }

    void sixteenBitSamplesCentredWithNeutralChroma()
    {
        // A 2 x 2 source of 10-bit samples in a 4 x 4 picture: one-pixel
        // black margins all round.
        const uint16_t samples[] = {1023, 4, 512, 0x3ff0 & 0x3ff};
        std::vector<uint8_t> source;
        for (const uint16_t sample : samples) {
            source.push_back(static_cast<uint8_t>(sample & 0xff));
            source.push_back(static_cast<uint8_t>(sample >> 8));
        }
        std::vector<uint8_t> output(4 * 4 * 3 / 2, 0x55);
        QCOMPARE(convert_raw_to_yuv_buffer_scale(source.data(), output.data(), 2, 2, 4, 4), 0);
        const uint8_t expected[16] = {0, 0, 0, 0, 0, 255, 1, 0, 0, 128, 252, 0, 0, 0, 0, 0};
        for (int k = 0; k < 16; ++k)
            QCOMPARE(int(output[k]), int(expected[k]));
        for (int k = 16; k < 24; ++k)
            QCOMPARE(int(output[k]), 128);
    }

    void sourceLargerThanTheOutputIsAllMargin()
    {
        std::vector<uint8_t> source(8 * 8 * 2, 0xff);
        std::vector<uint8_t> output(4 * 4 * 3 / 2, 0x55);
        convert_raw_to_yuv_buffer_scale(source.data(), output.data(), 8, 8, 4, 4);
        for (int k = 0; k < 16; ++k)
            QCOMPARE(int(output[k]), 0);
    }
};

QTEST_GUILESS_MAIN(TestPreviewConversion)
#include "tst_previewconversion.moc"
