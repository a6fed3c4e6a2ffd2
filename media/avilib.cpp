// SPDX-License-Identifier: GPL-2.0-or-later
// Writer of RIFF/AVI files holding one H.264 video stream, the pupil recording sent for analysis.

// The device board may be 32-bit ARM: offsets past 2 GiB need a 64-bit off_t.
// Must come before any system header.
#define _FILE_OFFSET_BITS 64

#include "avilib.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) >= 8, "recordings approach 4 GiB");

int AVI_errno = 0;

namespace {

// The header is written once at a fixed size, so frames can be appended right
// behind it while recording and the header rewritten in place at the end.
constexpr uint64_t kHeaderBytes = 2048;
// 2^32 - 1 - 16 MiB - 2048: the RIFF lengths and index offsets are 32-bit, so
// the file stays well clear of 4 GiB, index included.
constexpr uint64_t kMaxSize = 4278188031ULL;
constexpr int kIndexGrowth = 4096;
constexpr int kIndexEntryBytes = 16;

constexpr uint32_t kFlagHasIndex = 0x10;
constexpr uint32_t kFlagMustUseIndex = 0x20;
constexpr uint32_t kFlagInterleaved = 0x100;
constexpr uint32_t kKeyFrame = 0x10;

void put32(unsigned char *out, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<unsigned char>(value >> (8 * i));
}

// Appends the header fields in order; the layout is fixed because there is
// never an audio stream.
class HeaderBuilder
{
public:
    explicit HeaderBuilder(unsigned char *out)
        : m_out(out)
    {
    }

    void tag(const char *fourcc)
    {
        std::memcpy(m_out + m_at, fourcc, 4);
        m_at += 4;
    }
    void u32(uint32_t value)
    {
        put32(m_out + m_at, value);
        m_at += 4;
    }
    void u16(uint16_t value)
    {
        m_out[m_at] = static_cast<unsigned char>(value);
        m_out[m_at + 1] = static_cast<unsigned char>(value >> 8);
        m_at += 2;
    }
    void zeros(size_t count)
    {
        std::memset(m_out + m_at, 0, count);
        m_at += count;
    }
    size_t at() const { return m_at; }

private:
    unsigned char *m_out;
    size_t m_at = 0;
};

// Half up; clamped so that no frame rate, however odd, makes the conversion
// undefined.
uint32_t roundToU32(double value)
{
    const double rounded = value + 0.5;
    if (!(rounded >= 0.0))
        return 0;
    if (rounded >= 4294967296.0)
        return UINT32_MAX;
    return static_cast<uint32_t>(rounded);
}

struct HeaderShape
{
    uint64_t fileLength;
    uint32_t moviListLength;
    bool withInfo;
    bool indexWritten;
};

void buildHeader(const avi_t &avi, const HeaderShape &shape, unsigned char *out)
{
    const bool hasRate = avi.fps >= 0.001;
    const uint32_t microsPerFrame = hasRate ? roundToU32(1000000.0 / avi.fps) : 0;
    const uint32_t rate = hasRate ? roundToU32(avi.fps * 1000000.0) : 0;
    uint32_t flags = kFlagInterleaved;
    if (shape.indexWritten)
        flags |= kFlagHasIndex;
    if (avi.must_use_index)
        flags |= kFlagMustUseIndex;
    const auto width = static_cast<uint32_t>(avi.width);
    const auto height = static_cast<uint32_t>(avi.height);
    const auto frames = static_cast<uint32_t>(avi.video_frames);

    HeaderBuilder h(out);
    h.tag("RIFF");
    h.u32(static_cast<uint32_t>(shape.fileLength - 8));
    h.tag("AVI ");
    h.tag("LIST");
    h.u32(192);
    h.tag("hdrl");

    h.tag("avih");
    h.u32(56);
    h.u32(microsPerFrame);
    h.u32(0); // maximum bytes per second
    h.u32(0); // padding granularity
    h.u32(flags);
    h.u32(frames);
    h.u32(0); // initial frames
    h.u32(static_cast<uint32_t>(avi.audio_tracks + 1));
    h.u32(0); // suggested buffer size
    h.u32(width);
    h.u32(height);
    h.zeros(16);

    h.tag("LIST");
    h.u32(116);
    h.tag("strl");
    h.tag("strh");
    h.u32(56);
    h.tag("vids");
    h.tag(avi.compressor);
    h.u32(0); // flags
    h.u32(0); // priority and language
    h.u32(0); // initial frames
    h.u32(1000000);
    h.u32(rate);
    h.u32(0); // start
    h.u32(frames);
    h.u32(0);          // suggested buffer size
    h.u32(0xFFFFFFFF); // quality: unspecified
    h.u32(0);          // sample size
    h.zeros(8);

    h.tag("strf");
    h.u32(40);
    h.u32(40);
    h.u32(width);
    h.u32(height);
    h.u16(1);
    h.u16(24);
    h.tag(avi.compressor);
    h.u32(width * height * 3);
    h.zeros(16);

    if (shape.withInfo) {
        h.tag("LIST");
        h.u32(76);
        h.tag("INFO");
        h.tag("ISFT");
        h.u32(64);
        h.zeros(64);
    }

    // The movie list must start at the last 12 bytes of the reserved area,
    // so the frames written behind it are its contents; JUNK fills the gap.
    const size_t moviAt = kHeaderBytes - 12;
    h.tag("JUNK");
    h.u32(static_cast<uint32_t>(moviAt - h.at() - 4));
    h.zeros(moviAt - h.at());
    h.tag("LIST");
    h.u32(shape.moviListLength);
    h.tag("movi");
}

// Continues short writes and interrupted calls; the result is the number of
// bytes written, less than count when the file refuses more.
size_t writeAll(int fd, const void *data, size_t count)
{
    const auto *bytes = static_cast<const unsigned char *>(data);
    size_t done = 0;
    while (done < count) {
        const ssize_t n = ::write(fd, bytes + done, count - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += static_cast<size_t>(n);
    }
    return done;
}

// Closing after a failure must not replace the reason AVI_print_error reports.
void closeKeepingErrno(int fd)
{
    const int saved = errno;
    ::close(fd);
    errno = saved;
}

// Appends one chunk at the current end. On failure the position is not moved,
// so the next chunk overwrites the broken one.
int writeChunk(avi_t *AVI, const char *tag, const void *data, size_t bytes)
{
    unsigned char header[8];
    std::memcpy(header, tag, 4);
    put32(header + 4, static_cast<uint32_t>(bytes));
    static const unsigned char pad = 0;
    const bool odd = (bytes & 1) != 0;
    if (writeAll(AVI->fdes, header, sizeof header) != sizeof header || writeAll(AVI->fdes, data, bytes) != bytes ||
        (odd && writeAll(AVI->fdes, &pad, 1) != 1)) {
        const int saved = errno;
        ::lseek(AVI->fdes, static_cast<off_t>(AVI->pos), SEEK_SET);
        errno = saved;
        AVI_errno = AVI_ERR_WRITE;
        return -1;
    }
    AVI->pos += 8 + bytes + (odd ? 1 : 0);
    return 0;
}

int addIndexEntry(avi_t *AVI, uint32_t flags, uint64_t offset, uint32_t length)
{
    if (AVI->n_idx >= AVI->max_idx) {
        const size_t capacity = static_cast<size_t>(AVI->max_idx) + kIndexGrowth;
        void *grown = std::realloc(AVI->idx, capacity * kIndexEntryBytes);
        if (!grown) {
            AVI_errno = AVI_ERR_NO_MEMORY;
            return -1;
        }
        AVI->idx = static_cast<unsigned char(*)[16]>(grown);
        AVI->max_idx = static_cast<int32_t>(capacity);
    }
    unsigned char *entry = AVI->idx[AVI->n_idx];
    std::memcpy(entry, "00db", 4);
    put32(entry + 4, flags);
    put32(entry + 8, static_cast<uint32_t>(offset));
    put32(entry + 12, length);
    ++AVI->n_idx;
    return 0;
}

int writeHeaderAtStart(const avi_t *AVI, const unsigned char *header)
{
    if (::lseek(AVI->fdes, 0, SEEK_SET) != 0 || writeAll(AVI->fdes, header, kHeaderBytes) != kHeaderBytes) {
        AVI_errno = AVI_ERR_CLOSE;
        return -1;
    }
    return 0;
}

} // namespace

avi_t *AVI_open_output_file(const char *filename)
{
    auto *AVI = static_cast<avi_t *>(std::calloc(1, sizeof(avi_t)));
    if (!AVI) {
        AVI_errno = AVI_ERR_NO_MEMORY;
        return nullptr;
    }

    const mode_t mask = ::umask(0);
    ::umask(mask);
    // Not truncated here: an older, longer recording keeps its tail until
    // AVI_close cuts the file to its final length. Close-on-exec because the
    // shell commands the device runs meanwhile have no business with it.
    AVI->fdes = ::open(filename, O_RDWR | O_CREAT | O_CLOEXEC, 0644 & ~mask);
    if (AVI->fdes < 0) {
        AVI_errno = AVI_ERR_OPEN;
        std::free(AVI);
        return nullptr;
    }

    // Room for the header, which is only known in full once the recording ends.
    static const unsigned char zeros[kHeaderBytes] = {};
    if (writeAll(AVI->fdes, zeros, kHeaderBytes) != kHeaderBytes) {
        closeKeepingErrno(AVI->fdes);
        AVI_errno = AVI_ERR_WRITE;
        std::free(AVI);
        return nullptr;
    }

    AVI->mode = AVI_MODE_WRITE;
    AVI->pos = kHeaderBytes;
    return AVI;
}

void AVI_set_video(avi_t *AVI, int width, int height, double fps, const char *compressor)
{
    if (AVI->mode == AVI_MODE_READ)
        return;
    AVI->width = width;
    AVI->height = height;
    AVI->fps = fps;
    std::memset(AVI->compressor, 0, sizeof AVI->compressor);
    if (std::strncmp(compressor, "RGB", 3) != 0)
        std::strncpy(AVI->compressor, compressor, 4);
    avi_update_header(AVI);
}

int avi_update_header(avi_t *AVI)
{
    unsigned char header[kHeaderBytes];
    // A recording cut off by a power failure has no final header; declaring
    // the movie list as large as the file may ever grow lets a reader still
    // find the frames that did reach the disk.
    const HeaderShape shape{AVI->pos, static_cast<uint32_t>(kMaxSize - kHeaderBytes + 4), false, false};
    buildHeader(*AVI, shape, header);
    const bool written = writeHeaderAtStart(AVI, header) == 0;
    // Back to the end even when the header failed, so that frames never land in it.
    if (::lseek(AVI->fdes, static_cast<off_t>(AVI->pos), SEEK_SET) < 0 || !written) {
        AVI_errno = AVI_ERR_CLOSE;
        return -1;
    }
    return 0;
}

int AVI_write_frame(avi_t *AVI, const void *data, size_t bytes, int keyframe)
{
    if (AVI->mode == AVI_MODE_READ) {
        AVI_errno = AVI_ERR_NOT_PERMITTED;
        return -1;
    }
    // Both chunk headers and the index entry still to come must fit as well.
    const uint64_t indexBytes = kIndexEntryBytes * (static_cast<uint64_t>(AVI->n_idx) + 1);
    if (bytes > kMaxSize || AVI->pos + 8 + bytes + 8 + indexBytes > kMaxSize) {
        AVI_errno = AVI_ERR_SIZE_LIMIT;
        return -1;
    }
    const uint64_t position = AVI->pos;
    if (addIndexEntry(AVI, keyframe ? kKeyFrame : 0, position, static_cast<uint32_t>(bytes)) != 0)
        return -1;
    if (bytes > AVI->max_len)
        AVI->max_len = static_cast<uint32_t>(bytes);
    if (writeChunk(AVI, "00db", data, bytes) != 0)
        return -1;
    AVI->last_pos = position;
    AVI->last_len = static_cast<uint32_t>(bytes);
    ++AVI->video_frames;
    return 0;
}

int avi_close_output_file(avi_t *AVI)
{
    const uint64_t moviEnd = AVI->pos;
    const size_t indexBytes = static_cast<size_t>(AVI->n_idx) * kIndexEntryBytes;
    const bool indexWritten = writeChunk(AVI, "idx1", AVI->idx, indexBytes) == 0;
    if (!indexWritten)
        AVI_errno = AVI_ERR_WRITE_INDEX;

    unsigned char header[kHeaderBytes];
    const HeaderShape shape{AVI->pos, static_cast<uint32_t>(moviEnd - (kHeaderBytes - 4)), true, indexWritten};
    buildHeader(*AVI, shape, header);
    if (writeHeaderAtStart(AVI, header) != 0)
        return -1;
    // Cuts off what an older, longer file or a half-written index left behind.
    if (::ftruncate(AVI->fdes, static_cast<off_t>(AVI->pos)) != 0) {
        AVI_errno = AVI_ERR_CLOSE;
        return -1;
    }
    return indexWritten ? 0 : -1;
}

int AVI_close(avi_t *AVI)
{
    int result = 0;
    if (AVI->mode == AVI_MODE_WRITE) {
        result = avi_close_output_file(AVI);
        // The file is uploaded next: its index and final header reach the
        // disk now, not whenever the kernel gets round to them.
        if (::fsync(AVI->fdes) != 0 && result == 0) {
            AVI_errno = AVI_ERR_CLOSE;
            result = -1;
        }
    }
    // A failing close can be the first sign of lost data on some file systems.
    if (::close(AVI->fdes) != 0 && result == 0) {
        AVI_errno = AVI_ERR_CLOSE;
        result = -1;
    }
    std::free(AVI->idx);
    std::free(AVI);
    return result;
}

uint64_t AVI_max_size()
{
    return kMaxSize;
}

const char *AVI_strerror()
{
    static const char *const texts[] = {
        "avilib - No Error",
        "avilib - AVI file size limit reached",
        "avilib - Error opening AVI file",
        "avilib - Error reading from AVI file",
        "avilib - Error writing to AVI file",
        "avilib - Error writing index (file may still be useable)",
        "avilib - Error closing AVI file",
        "avilib - Operation (read/write) not permitted",
        "avilib - Out of memory (malloc failed)",
        "avilib - Not an AVI file",
        "avilib - AVI file has no header list (corrupted?)",
        "avilib - AVI file has no MOVI list (corrupted?)",
        "avilib - AVI file has no video data",
        "avilib - operation needs an index",
    };
    const int count = static_cast<int>(sizeof texts / sizeof texts[0]);
    if (AVI_errno < 0 || AVI_errno >= count)
        return "avilib - Unkown Error";
    return texts[AVI_errno];
}

void AVI_print_error(const char *text)
{
    // Only these errors come straight from a failed system call.
    const bool systemReason = AVI_errno >= AVI_ERR_OPEN && AVI_errno <= AVI_ERR_CLOSE;
    const int saved = errno;
    std::fprintf(stderr, "%s: %s\n", text, AVI_strerror());
    if (systemReason) {
        errno = saved;
        std::perror("REASON");
    }
}
