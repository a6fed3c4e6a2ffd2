// SPDX-License-Identifier: GPL-2.0-or-later
// The H.264 encoder of the recording: NV21 camera frames in, one encoded frame out per frame.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

class ISVCEncoder;
struct TagEncParamExt;

// On boards without a hardware encoder this is a software encoder. It is
// tuned for a camera recording that must keep up in real time: low
// complexity, about 4 Mbit/s, a key frame every 30 frames, and never a
// skipped frame, since every recorded frame is evidence for the analysis.
class cedarxutil
{
public:
    struct EncodedFrame
    {
        // Valid until the next encoded frame; copy what must be kept.
        const unsigned char *data = nullptr;
        unsigned int size = 0;
        int keyFrame = 0;
    };

    cedarxutil(int encodeWidth, int encodeHeight, int sourceWidth, int sourceHeight);
    ~cedarxutil();
    cedarxutil(const cedarxutil &) = delete;
    cedarxutil &operator=(const cedarxutil &) = delete;

    // Begins a stream (its first frame is a key frame). 0 / -1.
    int StartH264CedarX();
    // Encodes one NV21 frame. The physical address is for hardware that
    // reads memory directly; the software path reads the mapped frame.
    // 0 / -1.
    int H264_proc_frame_phy(const unsigned char *frame, unsigned int physical, EncodedFrame *output);
    // Ends the stream: frames are refused until the next start.
    void CloseCedarX();

    bool isStarted() const;

    // The library's settings for a recording, on top of its defaults.
    static void recordingParameters(ISVCEncoder *encoder, int width, int height, TagEncParamExt &parameters);

    // Frames encoded and the time spent on them since the encoder was made.
    struct Statistics
    {
        long long frames = 0;
        long long microseconds = 0;
    };
    Statistics statistics() const;

private:
    void closeLocked();

    // The recording thread starts and closes the stream while the capture
    // thread may be in the middle of a frame; the lock makes a close wait
    // for that frame instead of freeing the encoder under it.
    mutable std::mutex m_mutex;
    int m_encodeWidth;
    int m_encodeHeight;
    int m_sourceWidth;
    int m_sourceHeight;
    ISVCEncoder *m_encoder = nullptr;
    bool m_streaming = false;
    // The chroma planes the encoder takes (I420), split from NV21's
    // interleaved VU plane; luminance is read in place.
    std::vector<unsigned char> m_u;
    std::vector<unsigned char> m_v;
    std::vector<unsigned char> m_bitstream;
    Statistics m_statistics;
};
