// SPDX-License-Identifier: GPL-2.0-or-later
// The AVI writer, checked by reading its files back byte by byte as a player would.
// Recordings pass 4 GiB positions to lseek, as the writer does: on the 32-bit board too.
#define _FILE_OFFSET_BITS 64

#include "avilib.h"
#include "syncrecorder.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QVector>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The handle's fields are public: a test skips ahead by itself, so that a
// size limit can be reached without writing gigabytes. The gap reads back as
// zero bytes.
int setPosition(avi_t *avi, uint64_t position)
{
    if (::lseek(avi->fdes, static_cast<off_t>(position), SEEK_SET) < 0)
        return -1;
    avi->pos = position;
    return 0;
}

QByteArray le32(quint32 value)
{
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i)
        bytes[i] = char(value >> (8 * i));
    return bytes;
}

QByteArray zeros(int count)
{
    return QByteArray(count, '\0');
}

QByteArray chunk(const QByteArray &data)
{
    return "00db" + le32(quint32(data.size())) + data;
}

QByteArray indexEntry(quint32 flags, quint32 offset, quint32 size)
{
    return "00db" + le32(flags) + le32(offset) + le32(size);
}

// The header of the device's own recording (1920 x 1080 H.264 at 15 frames per
// second), every byte from 0 to 2048.
QByteArray referenceHeader(quint32 riffLength, quint32 flags, quint32 frames, bool withInfo, quint32 moviLength)
{
    const QByteArray main = "avih" + le32(56) + le32(66667) + zeros(8) + le32(flags) + le32(frames) + le32(0) +
                            le32(1) + le32(0) + le32(1920) + le32(1080) + zeros(16);
    const QByteArray stream = "strh" + le32(56) + "vidsH264" + zeros(12) + le32(1000000) + le32(15000000) + le32(0) +
                              le32(frames) + le32(0) + le32(0xFFFFFFFF) + zeros(12) + "strf" + le32(40) + le32(40) +
                              le32(1920) + le32(1080) + le32(1).left(2) + le32(24).left(2) + "H264" + le32(6220800) +
                              zeros(16);
    const QByteArray padding =
        withInfo ? "LIST" + le32(76) + "INFOISFT" + le32(64) + zeros(64) + "JUNK" + le32(1732) + zeros(1732)
                 : "JUNK" + le32(1816) + zeros(1816);
    return "RIFF" + le32(riffLength) + "AVI LIST" + le32(192) + "hdrl" + main + "LIST" + le32(116) + "strl" + stream +
           padding + "LIST" + le32(moviLength) + "movi";
}

QString compareHeader(const QByteArray &file, const QByteArray &reference)
{
    if (reference.size() != 2048)
        return QStringLiteral("reference ends at %1").arg(reference.size());
    for (int at = 0; at < reference.size(); at += 4) {
        if (file.mid(at, 4) != reference.mid(at, 4))
            return QStringLiteral("offset %1: %2, expected %3")
                .arg(at)
                .arg(QString::fromLatin1(file.mid(at, 4).toHex()), QString::fromLatin1(reference.mid(at, 4).toHex()));
    }
    return QString();
}

QByteArray readAt(QFile &file, qint64 at, qint64 count)
{
    return file.seek(at) ? file.read(count) : QByteArray();
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Runs `run` under a file-size limit, which makes writes fail part-way as a full disk would.
template <typename Run> void withFileSizeLimit(rlim_t bytes, Run run)
{
    struct rlimit old = {};
    ::getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit limit = old;
    limit.rlim_cur = bytes;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    run();
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
}

} // namespace

#define VERIFY_EMPTY(problem) QVERIFY2((problem).isEmpty(), qPrintable(problem))

class TestAviWriter : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const char *name) const { return m_dir->filePath(QString::fromLatin1(name)); }

    static avi_t *openRecording(const QString &file)
    {
        avi_t *avi = AVI_open_output_file(QFile::encodeName(file).constData());
        if (avi)
            AVI_set_video(avi, 1920, 1080, 15.0, "H264");
        return avi;
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        AVI_errno = 0;
    }

    void cleanup() { m_dir.reset(); }

    // The recording is uploaded right after it is closed; its index and final
    // header must be on the disk by then, or a power cut leaves a file that
    // no player opens.
    void closeSyncsTheFinishedFile()
    {
        const QString file = path("synced.avi");
        avi_t *avi = openRecording(file);
        QVERIFY(avi);
        const QByteArray frame(100, 'a');
        QCOMPARE(AVI_write_frame(avi, frame.constData(), 100, 1), 0);
        s_syncs.clear();
        QCOMPARE(AVI_close(avi), 0);
        const qint64 finalSize = QFileInfo(file).size();
        QVERIFY(std::any_of(s_syncs.cbegin(), s_syncs.cend(), [&](const Sync &sync) {
            return sync.path == QFileInfo(file).absoluteFilePath() && sync.size == finalSize;
        }));
    }

    void frameCrossingTheSizeLimitIsRefusedAndFileStaysReadable()
    {
        const QString file = path("limit.avi");
        avi_t *avi = openRecording(file);
        QVERIFY(avi);
        const QByteArray frame(100, 'a');
        QCOMPARE(AVI_write_frame(avi, frame.constData(), 100, 1), 0);
        // Skipping ahead leaves a hole in a sparse file instead of gigabytes of frames.
        const quint32 nearLimit = 4278187800;
        QCOMPARE(setPosition(avi, nearLimit), 0);
        QCOMPARE(AVI_write_frame(avi, frame.constData(), 100, 0), 0);
        // Now at nearLimit + 108 with 2 index entries: a frame of n bytes
        // needs 4278187908 + 8 + n + 8 + 3 * 16 = 4278187972 + n, and the
        // limit is 4278188031.
        QCOMPARE(AVI_write_frame(avi, QByteArray(60, 'c').constData(), 60, 1), -1);
        QCOMPARE(AVI_errno, 1);
        const QByteArray justFits(59, 'd');
        QCOMPARE(AVI_write_frame(avi, justFits.constData(), 59, 1), 0);
        QCOMPARE(AVI_close(avi), 0);

        QFile data(file);
        QVERIFY(data.open(QIODevice::ReadOnly));
        QCOMPARE(data.size(), qint64(4278188032));
        const QByteArray tail = chunk(frame) + chunk(justFits) + zeros(1) + "idx1" + le32(48) +
                                indexEntry(0x10, 2048, 100) + indexEntry(0, nearLimit, 100) +
                                indexEntry(0x10, nearLimit + 108, 59);
        QCOMPARE(readAt(data, nearLimit, tail.size()), tail);
        const QString problem =
            compareHeader(readAt(data, 0, 2048), referenceHeader(4278188024, 0x110, 3, true, 4278187976 - 2044));
        VERIFY_EMPTY(problem);
    }

    void failedWritesLeaveAReadableMovieList()
    {
        QVERIFY(!AVI_open_output_file(QFile::encodeName(path("no-such-folder/pupil_video.avi")).constData()));
        QCOMPARE(AVI_errno, 2);

        const QString file = path("full.avi");
        avi_t *avi = openRecording(file);
        QVERIFY(avi);
        const QByteArray first(100, 'a');
        const QByteArray second(100, 'b');
        QCOMPARE(AVI_write_frame(avi, first.constData(), 100, 1), 0);
        // Room for half a chunk header behind the first frame (2048 + 108);
        // the next frame then takes the place of the broken one.
        int result = 0;
        withFileSizeLimit(2160, [&] { result = AVI_write_frame(avi, first.constData(), 100, 0); });
        QCOMPARE(result, -1);
        QCOMPARE(AVI_errno, 4);
        QCOMPARE(AVI_write_frame(avi, second.constData(), 100, 0), 0);
        // The movie data ends at 2264; half an index chunk header fits.
        withFileSizeLimit(2268, [&] { result = AVI_close(avi); });
        QCOMPARE(result, -1);
        QCOMPARE(AVI_errno, 5);

        // No index, and the header says so.
        const QByteArray bytes = readAll(file);
        QCOMPARE(bytes.mid(2048), chunk(first) + chunk(second));
        const QString problem = compareHeader(bytes, referenceHeader(2256, 0x100, 2, true, 2264 - 2044));
        VERIFY_EMPTY(problem);
    }

    void recordingStartsProvisionalAndEndsAsTheReferenceWithOddFramesPadded()
    {
        // The device reuses one path: a longer old recording must leave no bytes behind.
        const QString file = path("pupil_video.avi");
        {
            QFile old(file);
            QVERIFY(old.open(QIODevice::WriteOnly));
            QCOMPARE(old.write(QByteArray("stale ").repeated(2000)), qint64(12000));
        }
        avi_t *avi = openRecording(file);
        QVERIFY(avi);
        // A recording cut off before it is closed still starts with a header a player reads.
        const QByteArray provisional = readAll(file).left(2048);
        QString problem = compareHeader(provisional, referenceHeader(2040, 0x100, 0, false, 4278185987));
        VERIFY_EMPTY(problem);
        // Frames do not touch the header again until the file is closed.
        QCOMPARE(AVI_write_frame(avi, "abc", 3, 1), 0);
        QCOMPARE(AVI_write_frame(avi, "defg", 4, 0), 0);
        QCOMPARE(AVI_write_frame(avi, "h", 1, 7), 0);
        // An odd frame is padded to an even length in the file; the index
        // gives its own length and the offset of its chunk.
        const QByteArray movie = chunk("abc") + zeros(1) + chunk("defg") + chunk("h") + zeros(1);
        QCOMPARE(readAll(file).left(2048 + movie.size()), provisional + movie);
        QCOMPARE(AVI_close(avi), 0);

        const QByteArray index = indexEntry(0x10, 2048, 3) + indexEntry(0, 2060, 4) + indexEntry(0x10, 2072, 1);
        const QByteArray bytes = readAll(file);
        QCOMPARE(bytes.mid(2048), movie + "idx1" + le32(quint32(index.size())) + index);
        problem = compareHeader(bytes, referenceHeader(quint32(bytes.size() - 8), 0x110, 3, true, movie.size() + 4));
        VERIFY_EMPTY(problem);
    }
};

QTEST_GUILESS_MAIN(TestAviWriter)
#include "tst_aviwriter.moc"
