// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the camera, the encoder, the frame queue and the recording file.
#include "gdata.h"

#include "avilib.h"
#include "cameraretry.h"
#include "cedarxutil.h"
#include "osalqueue.h"
#include "platform.h"
#include "previewconversion.h"
#include "v4l2device.h"

#include <QDebug>
#include <QFile>

#include <cstdlib>
#include <cstring>
#include <unistd.h>

VideoIo &GData::cameraIo()
{
    return *m_devices.camera;
}

int GData::V4l2DeviceOpen()
{
    // The camera button and the recording thread both open the camera while
    // the capture thread pulls from it: the device is built and started
    // aside, and only a working one takes its place.
    std::lock_guard<std::mutex> lock(m_cameraMutex);
    if (m_bCameraOpen)
        return 1;
    const Platform &platform = Platform::instance();
    auto device = std::make_unique<V4l2Device>(kCameraWidth, kCameraHeight, cameraIo(),
                                               platform.cameraRetryFile.toStdString(),
                                               QFile::encodeName(platform.videoDevice).toStdString());
    bool started = device->open_device() == 0;
    if (started) {
        device->set_exposure(m_nExposure);
        device->set_gain(m_nGain);
        started = device->start_capture() == 0;
    }
    if (!started) {
        qDebug("m_pV4l2Device open_device Error!");
        device->stop_capture();
        device->close_device();
        return 0;
    }
    m_pV4l2Device = std::move(device);
    m_pCedarx = std::make_unique<cedarxutil>(kEncoderWidth, kEncoderHeight, kEncoderWidth, kEncoderHeight);
    m_bCameraOpen = 1;
    return 1;
}

void GData::applyCameraControls()
{
    std::lock_guard<std::mutex> lock(m_cameraMutex);
    if (!m_pV4l2Device)
        return;
    m_pV4l2Device->set_exposure(m_nExposure);
    m_pV4l2Device->set_gain(m_nGain);
}

void GData::V4l2DeviceClose()
{
    std::lock_guard<std::mutex> lock(m_cameraMutex);
    if (m_pCedarx)
        m_pCedarx->CloseCedarX();
    if (!m_pV4l2Device)
        return;
    m_pV4l2Device->stop_capture();
    m_pV4l2Device->close_device();
    // The open flag stays set, so a later open does not touch the camera
    // again; the device itself is gone, and pulling frames then fails
    // instead of reaching freed memory.
    m_pV4l2Device.reset();
}

int GData::V4l2DevicePullFrame()
{
    std::lock_guard<std::mutex> lock(m_cameraMutex);
    if (!m_pV4l2Device)
        return 0;
    return m_pV4l2Device->pull_frame(&m_pFrame, &m_nFramePhysical, &m_nFrameWord, &m_nFrameLength, true) == 0 ? 1 : 0;
}

int GData::V4l2DevicePushFrame()
{
    std::lock_guard<std::mutex> lock(m_cameraMutex);
    if (!m_pV4l2Device)
        return -1;
    return m_pV4l2Device->push_frame();
}

int GData::AVIFileOpen()
{
    // A recording is still being written: opening again would truncate it
    // under its writer and leak its descriptor.
    if (m_pAvi) {
        qDebug("AVIFileOpen: a recording is still open");
        return 0;
    }
    const QByteArray path = QFile::encodeName(Platform::instance().recordingFile);
    m_pAvi = AVI_open_output_file(path.constData());
    if (!m_pAvi)
        return 0;
    m_bRecordingBroken = 0;
    AVI_set_video(m_pAvi, kEncoderWidth, kEncoderHeight, 15.0, "H264");
    return 1;
}

void GData::AVIFileWrite()
{
    EncodedFrameRecord *record = m_pDequeued;
    m_pDequeued = nullptr;
    if (!record)
        return;
    if (m_pAvi) {
        if (AVI_write_frame(m_pAvi, record->data, record->size, record->keyFrame) != 0) {
            qDebug("AVIFileWrite: the frame could not be written");
            m_bRecordingBroken = 1;
        }
        // The recording must be whole on disk the moment it ends, even if
        // the battery gives out right after.
        if (::fdatasync(m_pAvi->fdes) != 0)
            qDebug("fdatasync FAIL");
    }
    std::free(record->data);
    std::free(record);
}

int GData::AVIFileClose()
{
    if (!m_pAvi)
        return -1;
    const int result = AVI_close(m_pAvi);
    m_pAvi = nullptr;
    if (result != 0) {
        qDebug("AVIFileClose: the recording could not be finished");
        m_bRecordingBroken = 1;
    }
    return result;
}

int GData::RAW2H264()
{
    if (!m_pCedarx || !m_pFrame)
        return -1;
    cedarxutil::EncodedFrame encoded;
    const int result =
        m_pCedarx->H264_proc_frame_phy(static_cast<const unsigned char *>(m_pFrame), m_nFramePhysical, &encoded);
    m_pEncoded = encoded.data;
    m_nEncodedSize = encoded.size;
    m_nKeyFrame = encoded.keyFrame;
    return result;
}

void GData::H264Enqueue()
{
    auto *record = static_cast<EncodedFrameRecord *>(std::malloc(sizeof(EncodedFrameRecord)));
    if (!record)
        return;
    record->keyFrame = m_nKeyFrame;
    record->size = m_nEncodedSize;
    record->data = static_cast<unsigned char *>(std::malloc(m_nEncodedSize > 0 ? m_nEncodedSize : 1));
    if (!record->data) {
        qDebug("H264Enqueue malloc %d Failed!", static_cast<int>(m_nEncodedSize));
        std::free(record);
        return;
    }
    if (m_nEncodedSize > 0)
        std::memcpy(record->data, m_pEncoded, m_nEncodedSize);
    if (OSAL_Queue(m_pFrameQueue.get(), record) != 0) {
        qDebug("H264Enqueue: queue full, frame dropped");
        std::free(record->data);
        std::free(record);
    }
}

int GData::H264Dequeue()
{
    m_pDequeued = static_cast<EncodedFrameRecord *>(OSAL_Dequeue(m_pFrameQueue.get()));
    return m_pDequeued ? 1 : 0;
}

void GData::H264Emptyqueue()
{
    while (void *taken = OSAL_Dequeue(m_pFrameQueue.get())) {
        auto *record = static_cast<EncodedFrameRecord *>(taken);
        std::free(record->data);
        std::free(record);
        qDebug("H264Dequeue ok!");
    }
    qDebug("H264Emptyqueue ok!");
}

int GData::RAW2IMG()
{
    if (!m_pFrame)
        return 0;
    convert_raw_to_img_buffer_scale(static_cast<const uint8_t *>(m_pFrame), m_displayBuffer.data(), kCameraWidth,
                                    kCameraHeight, kPreviewWidth, kPreviewHeight);
    return 0;
}

int GData::RAW2YUV()
{
    // Meant for sensors that deliver 16-bit samples; an NV21 frame is too
    // short to be read as one, and is left alone.
    const size_t needed = static_cast<size_t>(kCameraWidth) * kCameraHeight * 2;
    if (!m_pFrame || m_nFrameLength < needed)
        return 0;
    return convert_raw_to_yuv_buffer_scale(static_cast<const uint8_t *>(m_pFrame), m_displayBuffer.data(), kCameraWidth,
                                           kCameraHeight, kCameraWidth, kCameraHeight);
}

int GData::convert_raw_to_img_buffer_scale(const uint8_t *source, uint8_t *destination, int width, int height,
                                           int previewWidth, int previewHeight)
{
    const PreviewStatistics statistics =
        ::convert_raw_to_img_buffer_scale(source, destination, width, height, previewWidth, previewHeight);
    m_nPreviewBrightness = statistics.brightness;
    m_nPreviewContrast = statistics.contrast;
    return 0;
}

int GData::convert_raw_to_yuv_buffer_scale(const uint8_t *source, uint8_t *destination, unsigned int sourceWidth,
                                           unsigned int sourceHeight, unsigned int outputWidth,
                                           unsigned int outputHeight)
{
    return ::convert_raw_to_yuv_buffer_scale(source, destination, sourceWidth, sourceHeight, outputWidth, outputHeight);
}

int GData::getCameraRetryCount() const
{
    return cameraretry::get(Platform::instance().cameraRetryFile.toStdString());
}

void GData::setCameraRetryCount(int count)
{
    cameraretry::set(Platform::instance().cameraRetryFile.toStdString(), count);
}
