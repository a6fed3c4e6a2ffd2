// SPDX-License-Identifier: GPL-2.0-or-later
// Benchmark: the encoder wrapper at 1080p against the encoding library called directly on the same frames.
#include "benchmark.h"
#include "cedarxutil.h"
#include "simulatedframes.h"

#include <QCoreApplication>

#include <cstring>
#include <wels/codec_api.h>

namespace {

// The library with the wrapper's settings, fed frames already in its own
// I420 layout: the reference the wrapper's own work is measured against.
struct DirectEncoder
{
    ISVCEncoder *encoder = nullptr;

    DirectEncoder()
    {
        WelsCreateSVCEncoder(&encoder);
        int traceLevel = WELS_LOG_ERROR;
        encoder->SetOption(ENCODER_OPTION_TRACE_LEVEL, &traceLevel);
        SEncParamExt parameters;
        cedarxutil::recordingParameters(encoder, 1920, 1080, parameters);
        encoder->InitializeExt(&parameters);
    }
    ~DirectEncoder()
    {
        encoder->Uninitialize();
        WelsDestroySVCEncoder(encoder);
    }

    size_t encode(uint8_t *i420)
    {
        SSourcePicture picture;
        std::memset(&picture, 0, sizeof picture);
        picture.iColorFormat = videoFormatI420;
        picture.iPicWidth = 1920;
        picture.iPicHeight = 1080;
        picture.iStride[0] = 1920;
        picture.iStride[1] = picture.iStride[2] = 960;
        picture.pData[0] = i420;
        picture.pData[1] = i420 + 1920 * 1080;
        picture.pData[2] = i420 + 1920 * 1080 * 5 / 4;
        SFrameBSInfo info;
        std::memset(&info, 0, sizeof info);
        encoder->EncodeFrame(&picture, &info);
        return static_cast<size_t>(info.iFrameSizeInBytes);
    }
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int frameCount = 90;
    const std::vector<std::vector<uint8_t>> nv21 = bench::simulatedFrames(frameCount);
    if (static_cast<int>(nv21.size()) != frameCount) {
        std::printf("the simulated camera delivered %zu frames\n", nv21.size());
        return 1;
    }
    std::vector<std::vector<uint8_t>> i420(nv21.size());
    for (size_t f = 0; f < nv21.size(); ++f) {
        const size_t plane = 1920 * 1080;
        const size_t quarter = plane / 4;
        i420[f].resize(plane * 3 / 2);
        std::memcpy(i420[f].data(), nv21[f].data(), plane);
        for (size_t i = 0; i < quarter; ++i) {
            i420[f][plane + quarter + i] = nv21[f][plane + 2 * i];
            i420[f][plane + i] = nv21[f][plane + 2 * i + 1];
        }
    }

    size_t bytes = 0;
    // One recording per round: a fresh stream, every frame encoded once.
    const bench::Pair times = bench::alternating(
        5, 1,
        [&](int) {
            cedarxutil encoder(1920, 1080, 1920, 1080);
            encoder.StartH264CedarX();
            cedarxutil::EncodedFrame out;
            for (const auto &frame : nv21) {
                encoder.H264_proc_frame_phy(frame.data(), 0, &out);
                bytes += out.size;
            }
        },
        [&](int) {
            DirectEncoder encoder;
            for (auto &frame : i420)
                bytes += encoder.encode(frame.data());
        });
    const double wrapped = times.first / frameCount;
    const double direct = times.second / frameCount;

    std::printf("H.264 encoding of 1920x1080 simulated camera frames (us per frame)\n");
    std::printf("wrapper: %.1f frames per second, library: %.1f frames per second\n", 1e6 / wrapped, 1e6 / direct);
    bench::printRatio("encoder wrapper, NV21 in", wrapped, "library called directly, I420 in", direct, 1.1);
    return bytes == 1 ? 1 : 0;
}
