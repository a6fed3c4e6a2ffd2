// SPDX-License-Identifier: GPL-2.0-or-later
// Benchmark: writing a 90-frame recording with the AVI writer against plain writes of the same bytes.
#include "avilib.h"
#include "benchmark.h"
#include "cedarxutil.h"
#include "simulatedframes.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    // Where the device writes its recording.
    QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/bench-avi-XXXXXX"));
    const int frameCount = 90;
    const std::vector<std::vector<uint8_t>> nv21 = bench::simulatedFrames(frameCount);
    struct Encoded
    {
        std::vector<uint8_t> bytes;
        int key;
    };
    std::vector<Encoded> encoded;
    cedarxutil encoder(1920, 1080, 1920, 1080);
    encoder.StartH264CedarX();
    for (const auto &frame : nv21) {
        cedarxutil::EncodedFrame out;
        if (encoder.H264_proc_frame_phy(frame.data(), 0, &out) != 0)
            return 1;
        encoded.push_back({std::vector<uint8_t>(out.data, out.data + out.size), out.keyFrame});
    }
    size_t total = 0;
    for (const Encoded &frame : encoded)
        total += frame.bytes.size();

    const QByteArray aviPath = QFile::encodeName(folder.path() + QStringLiteral("/pupil_video.avi"));
    const QByteArray rawPath = QFile::encodeName(folder.path() + QStringLiteral("/plain.bin"));
    int failures = 0;
    const auto writeAvi = [&](int) {
        avi_t *file = AVI_open_output_file(aviPath.constData());
        AVI_set_video(file, 1920, 1080, 15.0, "H264");
        for (const Encoded &frame : encoded) {
            failures += AVI_write_frame(file, frame.bytes.data(), frame.bytes.size(), frame.key) != 0;
            failures += ::fdatasync(file->fdes) != 0;
        }
        failures += AVI_close(file) != 0;
    };
    const auto writePlain = [&](int) {
        // Opened like the writer opens its file: an earlier recording's
        // blocks are overwritten, and the file is cut to length at the end.
        const int fd = ::open(rawPath.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        off_t end = 0;
        for (const Encoded &frame : encoded) {
            failures += ::write(fd, frame.bytes.data(), frame.bytes.size()) != static_cast<ssize_t>(frame.bytes.size());
            failures += ::fdatasync(fd) != 0;
            end += static_cast<off_t>(frame.bytes.size());
        }
        failures += ::ftruncate(fd, end) != 0;
        ::close(fd);
    };
    const bench::Pair times = bench::alternating(9, 1, writeAvi, writePlain);
    const double avi = times.first;
    const double plain = times.second;
    std::printf("90 encoded frames (%.1f MiB) with fdatasync after each frame, in %s (ms per recording)\n",
                total / 1048576.0, qPrintable(folder.path()));
    bench::printRatio("AVI writer", avi / 1000.0, "write() of the same bytes", plain / 1000.0, 1.1);
    return failures == 0 ? 0 : 1;
}
