// SPDX-License-Identifier: GPL-2.0-or-later
// The H.264 encoder of the recording: NV21 camera frames in, one encoded frame out per frame.
#include "cedarxutil.h"

#include <QDebug>

#include <chrono>
#include <cstring>
#include <wels/codec_api.h>

cedarxutil::cedarxutil(int encodeWidth, int encodeHeight, int sourceWidth, int sourceHeight)
    : m_encodeWidth(encodeWidth)
    , m_encodeHeight(encodeHeight)
    , m_sourceWidth(sourceWidth)
    , m_sourceHeight(sourceHeight)
{
}

cedarxutil::~cedarxutil()
{
    closeLocked();
}

cedarxutil::Statistics cedarxutil::statistics() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_statistics;
}

void cedarxutil::recordingParameters(ISVCEncoder *encoder, int width, int height, TagEncParamExt &parameters)
{
    encoder->GetDefaultParams(&parameters);
    parameters.iUsageType = CAMERA_VIDEO_REAL_TIME;
    parameters.iPicWidth = width;
    parameters.iPicHeight = height;
    parameters.iRCMode = RC_BITRATE_MODE;
    parameters.iTargetBitrate = 4000000;
    parameters.iMaxBitrate = UNSPECIFIED_BIT_RATE;
    // Every other camera frame is recorded: 15 of the camera's 30 per second.
    parameters.fMaxFrameRate = 15.0f;
    // The library drops frames to hold the bit rate by default; a recording
    // must keep every frame.
    parameters.bEnableFrameSkip = false;
    parameters.uiIntraPeriod = 30;
    parameters.iComplexityMode = LOW_COMPLEXITY;
    parameters.iSpatialLayerNum = 1;
    parameters.iTemporalLayerNum = 1;
    parameters.iMultipleThreadIdc = 1;
    parameters.sSpatialLayers[0].iVideoWidth = width;
    parameters.sSpatialLayers[0].iVideoHeight = height;
    parameters.sSpatialLayers[0].fFrameRate = 15.0f;
    parameters.sSpatialLayers[0].iSpatialBitrate = 4000000;
    parameters.sSpatialLayers[0].iMaxSpatialBitrate = UNSPECIFIED_BIT_RATE;
    parameters.sSpatialLayers[0].sSliceArgument.uiSliceMode = SM_SINGLE_SLICE;
}

bool cedarxutil::isStarted() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_streaming;
}

int cedarxutil::StartH264CedarX()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    // Setting up the library's encoder takes tens of milliseconds that a
    // six-second recording cannot spare: after the first time it is kept,
    // and a new stream only has to begin with a key frame.
    if (m_encoder) {
        m_encoder->ForceIntraFrame(true);
        m_streaming = true;
        return 0;
    }
    // The source is encoded at its own size; a smaller encode size would need
    // a scaler, which the camera never asks for.
    if (m_encodeWidth != m_sourceWidth || m_encodeHeight != m_sourceHeight || m_encodeWidth <= 0 ||
        m_encodeHeight <= 0 || m_encodeWidth % 2 != 0 || m_encodeHeight % 2 != 0) {
        qDebug("StartH264CedarX: unsupported size %dx%d from %dx%d", m_encodeWidth, m_encodeHeight, m_sourceWidth,
               m_sourceHeight);
        return -1;
    }
    if (WelsCreateSVCEncoder(&m_encoder) != 0 || !m_encoder) {
        m_encoder = nullptr;
        qDebug("StartH264CedarX: no encoder");
        return -1;
    }

    // The library warns that the bit rate is not held without frame
    // skipping; keeping every frame is the point, so only errors are shown.
    int traceLevel = WELS_LOG_ERROR;
    m_encoder->SetOption(ENCODER_OPTION_TRACE_LEVEL, &traceLevel);

    SEncParamExt parameters;
    recordingParameters(m_encoder, m_encodeWidth, m_encodeHeight, parameters);
    if (m_encoder->InitializeExt(&parameters) != 0) {
        qDebug("StartH264CedarX: encoder refused its settings");
        WelsDestroySVCEncoder(m_encoder);
        m_encoder = nullptr;
        return -1;
    }
    int format = videoFormatI420;
    m_encoder->SetOption(ENCODER_OPTION_DATAFORMAT, &format);
    m_streaming = true;

    const size_t chroma = static_cast<size_t>(m_encodeWidth / 2) * static_cast<size_t>(m_encodeHeight / 2);
    m_u.resize(chroma);
    m_v.resize(chroma);
    return 0;
}

int cedarxutil::H264_proc_frame_phy(const unsigned char *frame, unsigned int physical, EncodedFrame *output)
{
    (void)physical;
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto started = std::chrono::steady_clock::now();
    if (!m_encoder || !m_streaming || !frame || !output)
        return -1;

    const int width = m_encodeWidth;
    const int height = m_encodeHeight;
    const unsigned char *vu = frame + static_cast<size_t>(width) * static_cast<size_t>(height);
    const size_t chroma = m_u.size();
    unsigned char *u = m_u.data();
    unsigned char *v = m_v.data();
    for (size_t i = 0; i < chroma; ++i) {
        v[i] = vu[2 * i];
        u[i] = vu[2 * i + 1];
    }

    SSourcePicture picture;
    std::memset(&picture, 0, sizeof picture);
    picture.iColorFormat = videoFormatI420;
    picture.iPicWidth = width;
    picture.iPicHeight = height;
    picture.iStride[0] = width;
    picture.iStride[1] = width / 2;
    picture.iStride[2] = width / 2;
    picture.pData[0] = const_cast<unsigned char *>(frame);
    picture.pData[1] = u;
    picture.pData[2] = v;

    SFrameBSInfo info;
    std::memset(&info, 0, sizeof info);
    if (m_encoder->EncodeFrame(&picture, &info) != cmResultSuccess)
        return -1;
    if (info.eFrameType == videoFrameTypeSkip || info.eFrameType == videoFrameTypeInvalid)
        return -1;

    // The layers' NAL units make up one access unit; gather them in order.
    m_bitstream.clear();
    for (int layer = 0; layer < info.iLayerNum; ++layer) {
        const SLayerBSInfo &layerInfo = info.sLayerInfo[layer];
        int bytes = 0;
        for (int nal = 0; nal < layerInfo.iNalCount; ++nal)
            bytes += layerInfo.pNalLengthInByte[nal];
        m_bitstream.insert(m_bitstream.end(), layerInfo.pBsBuf, layerInfo.pBsBuf + bytes);
    }
    output->data = m_bitstream.data();
    output->size = static_cast<unsigned int>(m_bitstream.size());
    output->keyFrame = info.eFrameType == videoFrameTypeIDR || info.eFrameType == videoFrameTypeI ? 1 : 0;
    ++m_statistics.frames;
    m_statistics.microseconds +=
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - started).count();
    return 0;
}

void cedarxutil::CloseCedarX()
{
    // The stream ends; the library's encoder stays ready for the next one.
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streaming = false;
}

void cedarxutil::closeLocked()
{
    m_streaming = false;
    if (!m_encoder)
        return;
    m_encoder->Uninitialize();
    WelsDestroySVCEncoder(m_encoder);
    m_encoder = nullptr;
}
