// SPDX-License-Identifier: GPL-2.0-or-later
// The AVI writer, checked by reading its files back byte by byte as a player would.
#include "avilib.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QVector>

#include <csignal>
#include <memory>

#include <sys/resource.h>

namespace {

QByteArray le32(quint32 value)
{
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i)
        bytes[i] = char(value >> (8 * i));
    return bytes;
}

QByteArray le16(quint16 value)
{
    return le32(value).left(2);
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

struct Field
{
    int offset;
    QByteArray bytes;
};

// The header of the device's own recording (1920 x 1080 H.264 at 15 frames per
// second), every byte from 0 to 2048.
QVector<Field> referenceHeader(quint32 riffLength, quint32 flags, quint32 frames, bool withInfo, quint32 moviLength)
{
    QVector<Field> fields = {
        {0, "RIFF"},          {4, le32(riffLength)}, {8, "AVI "},
        {12, "LIST"},         {16, le32(192)},       {20, "hdrl"},
        {24, "avih"},         {28, le32(56)},        {32, le32(66667)},
        {36, le32(0)},        {40, le32(0)},         {44, le32(flags)},
        {48, le32(frames)},   {52, le32(0)},         {56, le32(1)},
        {60, le32(0)},        {64, le32(1920)},      {68, le32(1080)},
        {72, zeros(16)},      {88, "LIST"},          {92, le32(116)},
        {96, "strl"},         {100, "strh"},         {104, le32(56)},
        {108, "vids"},        {112, "H264"},         {116, zeros(12)},
        {128, le32(1000000)}, {132, le32(15000000)}, {136, le32(0)},
        {140, le32(frames)},  {144, le32(0)},        {148, le32(0xFFFFFFFF)},
        {152, zeros(12)},     {164, "strf"},         {168, le32(40)},
        {172, le32(40)},      {176, le32(1920)},     {180, le32(1080)},
        {184, le16(1)},       {186, le16(24)},       {188, "H264"},
        {192, le32(6220800)}, {196, zeros(16)},
    };
    if (withInfo)
        fields += {{212, "LIST"},    {216, le32(76)}, {220, "INFO"},     {224, "ISFT"},     {228, le32(64)},
                   {232, zeros(64)}, {296, "JUNK"},   {300, le32(1732)}, {304, zeros(1732)}};
    else
        fields += {{212, "JUNK"}, {216, le32(1816)}, {220, zeros(1816)}};
    fields += {{2036, "LIST"}, {2040, le32(moviLength)}, {2044, "movi"}};
    return fields;
}

QString compareHeader(const QByteArray &file, const QVector<Field> &fields)
{
    int next = 0;
    for (const Field &field : fields) {
        if (field.offset != next)
            return QStringLiteral("reference leaves a gap at %1").arg(next);
        const QByteArray actual = file.mid(field.offset, field.bytes.size());
        if (actual != field.bytes)
            return QStringLiteral("offset %1: %2, expected %3")
                .arg(field.offset)
                .arg(QString::fromLatin1(actual.toHex()), QString::fromLatin1(field.bytes.toHex()));
        next += field.bytes.size();
    }
    return next == 2048 ? QString() : QStringLiteral("reference ends at %1").arg(next);
}

QByteArray readAt(QFile &file, qint64 at, qint64 count)
{
    return file.seek(at) ? file.read(count) : QByteArray();
}

// The whole file a player reads: the reference header, then exactly the
// movie data and the index.
QString compareRecording(const QByteArray &file, int frames, const QByteArray &movie, const QByteArray &index)
{
    const QByteArray tail = movie + "idx1" + le32(quint32(index.size())) + index;
    if (file.mid(2048) != tail)
        return QStringLiteral("after the header: %1, expected %2")
            .arg(QString::fromLatin1(file.mid(2048).toHex()), QString::fromLatin1(tail.toHex()));
    return compareHeader(
        file, referenceHeader(quint32(file.size() - 8), 0x110, quint32(frames), true, quint32(movie.size() + 4)));
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

    // --- failure paths ---

    void openInMissingFolderFails()
    {
        QVERIFY(!AVI_open_output_file(QFile::encodeName(path("no-such-folder/pupil_video.avi")).constData()));
        QCOMPARE(AVI_errno, 2);
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
        QCOMPARE(AVI_set_position_for_test(avi, nearLimit), 0);
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

    // --- normal operation ---

    void finalRecordingMatchesTheReferenceWithOddFramesPadded()
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
        QCOMPARE(AVI_write_frame(avi, "abc", 3, 1), 0);
        QCOMPARE(AVI_write_frame(avi, "defg", 4, 0), 0);
        QCOMPARE(AVI_write_frame(avi, "h", 1, 7), 0);
        QCOMPARE(AVI_close(avi), 0);

        // An odd frame is padded to an even length in the file; the index
        // gives its own length and the offset of its chunk.
        const QString problem =
            compareRecording(readAll(file), 3, chunk("abc") + zeros(1) + chunk("defg") + chunk("h") + zeros(1),
                             indexEntry(0x10, 2048, 3) + indexEntry(0, 2060, 4) + indexEntry(0x10, 2072, 1));
        VERIFY_EMPTY(problem);
    }

    void cutOffRecordingStartsWithTheProvisionalHeader()
    {
        const QString file = path("cut.avi");
        avi_t *avi = openRecording(file);
        QVERIFY(avi);
        const QByteArray provisional = readAll(file);
        QCOMPARE(provisional.size(), 2048);
        const QString problem = compareHeader(provisional, referenceHeader(2040, 0x100, 0, false, 4278185987));
        VERIFY_EMPTY(problem);

        // Frames do not touch the header again until the file is closed.
        QCOMPARE(AVI_write_frame(avi, "abcd", 4, 1), 0);
        QCOMPARE(readAll(file), provisional + chunk("abcd"));
        QCOMPARE(AVI_close(avi), 0);
    }
};

QTEST_GUILESS_MAIN(TestAviWriter)
#include "tst_aviwriter.moc"
