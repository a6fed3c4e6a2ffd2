// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated Bluetooth receipt printer: a pseudo-terminal behind the bound port, paper as pictures.
//
//   orvella-receiptprinter LINK OUTPUT_DIR MAC OWNER_PID
//
// Started by the rfcomm stand-in's "bind". Makes a pseudo-terminal, links
// LINK to its device node, and reads what the device sends. A job ends when
// the line has been quiet for a moment; each job becomes
// OUTPUT_DIR/receipts/receipt-N.png (58 mm paper at 203 dpi) with the
// decoded text and commands beside it, and last-receipt.png is replaced.
// Ends on SIGTERM ("release"), when LINK no longer leads to it, or when the
// program that bound it (OWNER_PID) is gone.
#include "escposdecoder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSaveFile>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {

std::atomic<bool> s_stop{false};

void onTerminate(int)
{
    s_stop = true;
}

// 48 mm of print on 58 mm paper at 8 dots per mm.
constexpr int kPrintWidth = 384;
constexpr int kMargin = 24;
constexpr int kQuietMs = 400;

QImage render(const QVector<sim::PrintedLine> &lines)
{
    QFont font(QStringLiteral("WenQuanYi Micro Hei Mono"));
    font.setPixelSize(21);
    font.setStyleHint(QFont::Monospace);
    QFont bold = font;
    bold.setBold(true);
    const int lineHeight = QFontMetrics(font).height() + 2;
    const int height = kMargin * 2 + lineHeight * std::max(1, lines.size());
    QImage paper(kPrintWidth + kMargin * 2, height, QImage::Format_RGB32);
    paper.fill(QColor(250, 248, 240));
    QPainter painter(&paper);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(QColor(40, 40, 48));
    int y = kMargin;
    for (const sim::PrintedLine &line : lines) {
        painter.setFont(line.bold ? bold : font);
        const Qt::Alignment align =
            line.align == 1 ? Qt::AlignHCenter : (line.align == 2 ? Qt::AlignRight : Qt::AlignLeft);
        painter.drawText(QRect(kMargin, y, kPrintWidth, lineHeight), align | Qt::AlignVCenter, line.text);
        y += lineHeight;
    }
    // The torn edge at the bottom.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(60, 60, 60));
    QPolygon teeth;
    teeth << QPoint(0, height);
    for (int x = 0; x <= paper.width(); x += 8)
        teeth << QPoint(x, height - ((x / 8) % 2 ? 6 : 0));
    teeth << QPoint(paper.width(), height);
    painter.drawPolygon(teeth);
    return paper;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

void saveJob(const QString &outputDir, const QByteArray &stream)
{
    // A folder that is gone went with its device (a test's throw-away one):
    // the paper has nobody to go to, and making the folder again would leave
    // it behind for good.
    if (!QFileInfo::exists(outputDir))
        return;
    sim::EscPosDecoder decoder;
    decoder.feed(stream);
    decoder.finish();
    const QString folder = outputDir + QStringLiteral("/receipts");
    QDir().mkpath(folder);
    const int number = QDir(folder).entryList({QStringLiteral("receipt-*.png")}, QDir::Files).size() + 1;
    const QString base = folder + QStringLiteral("/receipt-%1").arg(number, 3, 10, QLatin1Char('0'));
    QString text;
    for (const sim::PrintedLine &line : decoder.lines())
        text += line.text + QLatin1Char('\n');
    writeFile(base + QStringLiteral(".bin"), stream);
    writeFile(base + QStringLiteral(".txt"), text.toUtf8());
    writeFile(base + QStringLiteral(".commands"), decoder.commands().join(QLatin1Char('\n')).toUtf8() + '\n');
    const QImage image = render(decoder.lines());
    image.save(base + QStringLiteral(".png"));
    QFile::remove(outputDir + QStringLiteral("/last-receipt.png"));
    QFile::copy(base + QStringLiteral(".png"), outputDir + QStringLiteral("/last-receipt.png"));
    QFile log(outputDir + QStringLiteral("/receipts.log"));
    if (log.open(QIODevice::Append))
        log.write(QStringLiteral("%1 %2 %3 bytes, %4 lines\n")
                      .arg(QDateTime::currentDateTime().toString(Qt::ISODate), base + QStringLiteral(".png"))
                      .arg(stream.size())
                      .arg(decoder.lines().size())
                      .toUtf8());
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: %s LINK OUTPUT_DIR MAC OWNER_PID\n", argv[0]);
        return 2;
    }
    const QString link = QFile::decodeName(argv[1]);
    const QString outputDir = QFile::decodeName(argv[2]);
    const pid_t owner = static_cast<pid_t>(QByteArray(argv[4]).toLongLong());

    // The port first: rfcomm's bind waits for it, and the device may open
    // it at once.
    int master = -1;
    int slave = -1;
    char slaveName[256] = {};
    if (::openpty(&master, &slave, slaveName, nullptr, nullptr) < 0) {
        std::perror("openpty");
        return 1;
    }
    // Kept open here too: without any open slave the master reports a
    // hang-up between two jobs of the device.
    termios tio{};
    if (::tcgetattr(slave, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::tcsetattr(slave, TCSANOW, &tio);
    }
    QFile::remove(link);
    if (!QFile::link(QString::fromLocal8Bit(slaveName), link)) {
        std::fprintf(stderr, "cannot link %s to %s\n", argv[1], slaveName);
        return 1;
    }
    std::signal(SIGTERM, onTerminate);
    std::signal(SIGINT, onTerminate);

    // Started without channels (they would be rfcomm's, which the device
    // reads): this program's notes go to a log of its own.
    QDir().mkpath(outputDir);
    if (!std::freopen(QFile::encodeName(outputDir + QStringLiteral("/printer.log")).constData(), "a", stderr))
        std::fclose(stderr);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    QByteArray job;
    int quietMs = 0;
    int checkMs = 0;
    while (!s_stop) {
        pollfd in{master, POLLIN, 0};
        const int ready = ::poll(&in, 1, 50);
        if (ready > 0 && (in.revents & POLLIN)) {
            char buffer[4096];
            const ssize_t n = ::read(master, buffer, sizeof buffer);
            if (n > 0) {
                job.append(buffer, static_cast<int>(n));
                quietMs = 0;
                continue;
            }
        }
        quietMs += 50;
        if (!job.isEmpty() && quietMs >= kQuietMs) {
            saveJob(outputDir, job);
            job.clear();
        }
        checkMs += 50;
        if (checkMs >= 1000) {
            checkMs = 0;
            const bool stillLinked = QFileInfo(link).symLinkTarget() == QString::fromLocal8Bit(slaveName);
            if (!stillLinked || (owner > 1 && ::kill(owner, 0) != 0 && errno == ESRCH))
                break;
        }
    }
    if (!job.isEmpty())
        saveJob(outputDir, job);
    if (QFileInfo(link).symLinkTarget() == QString::fromLocal8Bit(slaveName))
        QFile::remove(link);
    ::close(slave);
    ::close(master);
    return 0;
}
