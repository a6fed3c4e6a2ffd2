// SPDX-License-Identifier: GPL-2.0-or-later
// Reads back the structure of a RIFF/AVI file, so the simulated analysis server can refuse a broken recording.
#include "avireader.h"

#include <map>
#include <vector>

namespace avireader {

namespace {

constexpr quint32 kHasIndex = 0x10;

struct Chunk
{
    QByteArray id;
    qint64 offset = 0; // of the chunk header
    quint32 size = 0;

    qint64 data() const { return offset + 8; }
    qint64 end() const { return data() + size; }
};

class Reader
{
public:
    explicit Reader(const QByteArray &file)
        : m_file(file)
    {
    }

    qint64 size() const { return m_file.size(); }
    QByteArray tag(qint64 at) const { return m_file.mid(static_cast<int>(at), 4); }
    // Callers have checked that the four bytes are inside the file.
    quint32 u32(qint64 at) const
    {
        const auto *p = reinterpret_cast<const uchar *>(m_file.constData() + at);
        return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
    }
    qint32 i32(qint64 at) const { return static_cast<qint32>(u32(at)); }

    // The chunks between begin and end. A chunk must fit; its pad byte to an
    // even length may be missing only at the very end.
    bool chunks(qint64 begin, qint64 end, std::vector<Chunk> &out, QString &problem) const
    {
        for (qint64 at = begin; at < end;) {
            if (end - at < 8) {
                problem = QStringLiteral("a chunk header at offset %1 is cut off").arg(at);
                return false;
            }
            Chunk chunk{tag(at), at, u32(at + 4)};
            if (chunk.end() > end) {
                problem = QStringLiteral("chunk \"%1\" at offset %2 runs past its list")
                              .arg(QString::fromLatin1(chunk.id))
                              .arg(at);
                return false;
            }
            out.push_back(chunk);
            at = chunk.end() + (chunk.size & 1);
        }
        return true;
    }

    bool isList(const Chunk &chunk, const char *form) const
    {
        return chunk.id == "LIST" && chunk.size >= 4 && tag(chunk.data()) == form;
    }

private:
    const QByteArray &m_file;
};

struct VideoStream
{
    bool found = false;
    int number = 0;
    quint32 length = 0;
    qint32 width = 0;
    qint32 height = 0;
    QByteArray handler;
};

struct MainHeader
{
    quint32 microsecondsPerFrame = 0;
    quint32 flags = 0;
    quint32 totalFrames = 0;
    qint32 width = 0;
    qint32 height = 0;
};

bool readHeaderList(const Reader &reader, const Chunk &hdrl, MainHeader &main, VideoStream &video, QString &problem)
{
    std::vector<Chunk> entries;
    if (!reader.chunks(hdrl.data() + 4, hdrl.end(), entries, problem))
        return false;
    if (entries.empty() || entries.front().id != "avih" || entries.front().size < 56) {
        problem = QStringLiteral("the header list does not start with a main header");
        return false;
    }
    const qint64 avih = entries.front().data();
    main.microsecondsPerFrame = reader.u32(avih);
    main.flags = reader.u32(avih + 12);
    main.totalFrames = reader.u32(avih + 16);
    main.width = reader.i32(avih + 32);
    main.height = reader.i32(avih + 36);

    int streamNumber = 0;
    for (const Chunk &entry : entries) {
        if (!reader.isList(entry, "strl"))
            continue;
        const int number = streamNumber++;
        std::vector<Chunk> parts;
        if (!reader.chunks(entry.data() + 4, entry.end(), parts, problem))
            return false;
        if (parts.size() < 2 || parts[0].id != "strh" || parts[0].size < 48 || parts[1].id != "strf") {
            problem = QStringLiteral("stream %1 lacks its stream header or format").arg(number);
            return false;
        }
        const qint64 strh = parts[0].data();
        if (video.found || reader.tag(strh) != "vids")
            continue;
        if (parts[1].size < 40) {
            problem = QStringLiteral("the video stream's format is too short");
            return false;
        }
        video.found = true;
        video.number = number;
        video.handler = reader.tag(strh + 4);
        video.length = reader.u32(strh + 32);
        video.width = reader.i32(parts[1].data() + 4);
        video.height = reader.i32(parts[1].data() + 8);
    }
    if (!video.found) {
        problem = QStringLiteral("no video stream");
        return false;
    }
    return true;
}

// The movie list's chunks by offset, descending into "rec " groups.
bool readMovieList(const Reader &reader, const Chunk &movi, std::map<qint64, Chunk> &found, QString &problem)
{
    std::vector<Chunk> entries;
    if (!reader.chunks(movi.data() + 4, movi.end(), entries, problem))
        return false;
    for (const Chunk &entry : entries) {
        if (reader.isList(entry, "rec ")) {
            std::vector<Chunk> group;
            if (!reader.chunks(entry.data() + 4, entry.end(), group, problem))
                return false;
            for (const Chunk &inner : group)
                found[inner.offset] = inner;
        } else {
            found[entry.offset] = entry;
        }
    }
    return true;
}

} // namespace

Summary inspect(const QByteArray &file)
{
    Summary summary;
    const auto refuse = [&summary](const QString &problem) {
        summary.problem = problem;
        return summary;
    };
    const Reader reader(file);
    if (reader.size() < 12)
        return refuse(QStringLiteral("shorter than a RIFF header"));
    if (reader.tag(0) != "RIFF")
        return refuse(QStringLiteral("not a RIFF file"));
    if (reader.tag(8) != "AVI ")
        return refuse(QStringLiteral("a RIFF file, but not an AVI"));
    const qint64 declared = qint64(reader.u32(4)) + 8;
    if (declared != reader.size())
        return refuse(
            QStringLiteral("the RIFF header gives %1 bytes, the file has %2").arg(declared).arg(reader.size()));

    QString problem;
    std::vector<Chunk> top;
    if (!reader.chunks(12, reader.size(), top, problem))
        return refuse(problem);
    const Chunk *hdrl = nullptr;
    const Chunk *movi = nullptr;
    const Chunk *idx1 = nullptr;
    for (const Chunk &chunk : top) {
        if (!hdrl && reader.isList(chunk, "hdrl"))
            hdrl = &chunk;
        else if (!movi && reader.isList(chunk, "movi"))
            movi = &chunk;
        else if (!idx1 && chunk.id == "idx1")
            idx1 = &chunk;
    }
    if (!hdrl)
        return refuse(QStringLiteral("no header list"));
    MainHeader main;
    VideoStream video;
    if (!readHeaderList(reader, *hdrl, main, video, problem))
        return refuse(problem);
    if (!movi)
        return refuse(QStringLiteral("no movie list"));
    std::map<qint64, Chunk> movieChunks;
    if (!readMovieList(reader, *movi, movieChunks, problem))
        return refuse(problem);
    if (!idx1)
        return refuse(QStringLiteral("no index"));
    if (idx1->size % 16 != 0)
        return refuse(QStringLiteral("an index of %1 bytes is not whole entries").arg(idx1->size));
    if (!(main.flags & kHasIndex))
        return refuse(QStringLiteral("the main header does not announce the index"));

    const QByteArray number = QByteArray::number(video.number).rightJustified(2, '0');
    const auto isVideo = [&number](const QByteArray &id) {
        return id.startsWith(number) && (id.endsWith("db") || id.endsWith("dc"));
    };
    int movieFrames = 0;
    for (const auto &entry : movieChunks)
        movieFrames += isVideo(entry.second.id) ? 1 : 0;

    // Offsets count from the "movi" tag by the format's rule; some writers,
    // the device's among them, count from the file's start instead.
    const quint32 entries = idx1->size / 16;
    const qint64 fromMovie = movi->data();
    qint64 base = fromMovie;
    if (entries > 0 && !movieChunks.count(fromMovie + reader.u32(idx1->data() + 8)))
        base = 0;
    int indexedFrames = 0;
    for (quint32 i = 0; i < entries; ++i) {
        const qint64 entry = idx1->data() + qint64(i) * 16;
        const QByteArray id = reader.tag(entry);
        const auto chunk = movieChunks.find(base + reader.u32(entry + 8));
        if (chunk == movieChunks.end() || chunk->second.id != id || chunk->second.size != reader.u32(entry + 12))
            return refuse(QStringLiteral("index entry %1 does not match the movie data").arg(i));
        indexedFrames += isVideo(id) ? 1 : 0;
    }

    if (indexedFrames != movieFrames)
        return refuse(
            QStringLiteral("the index lists %1 frames, the movie list holds %2").arg(indexedFrames).arg(movieFrames));
    if (main.totalFrames != quint32(indexedFrames))
        return refuse(
            QStringLiteral("the main header counts %1 frames, the index %2").arg(main.totalFrames).arg(indexedFrames));
    if (video.length != quint32(indexedFrames))
        return refuse(
            QStringLiteral("the stream header counts %1 frames, the index %2").arg(video.length).arg(indexedFrames));
    if (main.width != video.width || main.height != video.height)
        return refuse(QStringLiteral("the main header's picture size differs from the stream's"));
    if (indexedFrames < 1)
        return refuse(QStringLiteral("no frames"));

    summary.valid = true;
    summary.frames = indexedFrames;
    summary.width = video.width;
    summary.height = video.height;
    summary.compressor = video.handler;
    summary.microsecondsPerFrame = main.microsecondsPerFrame;
    return summary;
}

} // namespace avireader
