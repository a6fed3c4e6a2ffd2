// SPDX-License-Identifier: GPL-2.0-or-later
// Writer of RIFF/AVI files holding one H.264 video stream, the pupil recording sent for analysis.
#pragma once

#include <cstddef>
#include <cstdint>

enum {
    AVI_MODE_WRITE = 0,
    AVI_MODE_READ = 1,
};

// Values of AVI_errno; AVI_strerror() gives the text of each.
enum {
    AVI_ERR_NONE = 0,
    AVI_ERR_SIZE_LIMIT = 1,
    AVI_ERR_OPEN = 2,
    AVI_ERR_READ = 3,
    AVI_ERR_WRITE = 4,
    AVI_ERR_WRITE_INDEX = 5,
    AVI_ERR_CLOSE = 6,
    AVI_ERR_NOT_PERMITTED = 7,
    AVI_ERR_NO_MEMORY = 8,
    AVI_ERR_NOT_AVI = 9,
    AVI_ERR_NO_HEADER_LIST = 10,
    AVI_ERR_NO_MOVIE_LIST = 11,
    AVI_ERR_NO_VIDEO = 12,
    AVI_ERR_NEEDS_INDEX = 13,
};

// One open recording. Allocated zeroed by AVI_open_output_file and freed by
// AVI_close; the fields are public so the recorder can reach the descriptor.
struct avi_t
{
    int fdes;                 // the open file; the recorder fdatasync()s it after every frame
    int mode;                 // AVI_MODE_WRITE or AVI_MODE_READ
    int32_t width, height;    // video size in pixels
    double fps;               // frames per second
    char compressor[5];       // FOURCC, zero-terminated; all zero for uncompressed RGB
    int32_t video_frames;     // frames written so far
    uint32_t max_len;         // largest frame written
    uint64_t pos;             // file offset of the next chunk; the descriptor's offset is kept there
    int32_t n_idx;            // entries used in idx
    int32_t max_idx;          // entries allocated in idx
    unsigned char (*idx)[16]; // "idx1" entries, already in their little-endian file form
    int must_use_index;       // sets the "must use index" header flag; never set by this writer
    int32_t audio_tracks;     // always 0: the recording has no sound
    uint64_t last_pos;        // offset of the last frame chunk written
    uint32_t last_len;        // length of the last frame written
};

// Error number of the last failing call, shared by every handle of the process.
extern int AVI_errno;

// Creates (or reuses) the file and reserves room for the header. Null on failure.
avi_t *AVI_open_output_file(const char *filename);
// Stores the video format and writes a provisional header; ignored on a handle in reading mode.
// A failure leaves AVI_errno at AVI_ERR_CLOSE.
void AVI_set_video(avi_t *AVI, int width, int height, double fps, const char *compressor);
// Appends one frame; keyframe non-zero marks it as a key frame. 0, or -1 with AVI_errno set.
int AVI_write_frame(avi_t *AVI, const void *data, size_t bytes, int keyframe);
// Finishes the file (index, final header) and frees the handle in every case. 0, or -1 with AVI_errno set.
int AVI_close(avi_t *AVI);

// The steps behind AVI_close and AVI_set_video; callers normally use those.
int avi_close_output_file(avi_t *AVI);
int avi_update_header(avi_t *AVI);

// Largest file offset a frame chunk may reach, index included.
uint64_t AVI_max_size();

const char *AVI_strerror();
// Prints "<text>: <error text>" to standard error, and the system's reason for file errors.
void AVI_print_error(const char *text);
