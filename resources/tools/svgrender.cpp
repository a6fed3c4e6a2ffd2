// SPDX-License-Identifier: GPL-2.0-or-later
// Build-time tool: renders one icon drawing into the exact PNG or JPG the pages load, or lays the rendered set out on a
// contact sheet.
#include <QColor>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSvgRenderer>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <vector>

namespace {

const char kUsage[] = "usage: svgrender [--background COLOUR] [--recolor FROM=TO]... DRAWING.svg OUTPUT.png|jpg WxH\n"
                      "       svgrender --sheet LIST OUTPUT.png [--zoom N]\n";

int fail(const QString &text)
{
    std::fprintf(stderr, "svgrender: %s\n", qPrintable(text));
    return 1;
}

// QtSvg draws SVG Tiny: what it cannot read it reports as a warning, and some
// features (clip paths, masks, filters) it drops without a word, drawing the
// rest. A drawing that looks right in an editor would then ship wrong, so both
// fail the build: the warnings are collected, the silent features refused.
// Text is refused too: its look would depend on the build machine's fonts.
QStringList *s_svgWarnings = nullptr;

const char *const kRefused[] = {"clip-path", "<clipPath", "<mask", "mask=", "<filter", "filter=", "<text"};

void collectWarnings(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (s_svgWarnings && type != QtDebugMsg && type != QtInfoMsg)
        s_svgWarnings->append(text);
}

class WarningCollector
{
public:
    WarningCollector()
    {
        s_svgWarnings = &m_warnings;
        m_previous = qInstallMessageHandler(collectWarnings);
    }
    ~WarningCollector()
    {
        qInstallMessageHandler(m_previous);
        s_svgWarnings = nullptr;
    }
    WarningCollector(const WarningCollector &) = delete;
    WarningCollector &operator=(const WarningCollector &) = delete;

    const QStringList &warnings() const { return m_warnings; }

private:
    QStringList m_warnings;
    QtMessageHandler m_previous = nullptr;
};

bool parseSize(const QString &text, QSize *size)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,4})x(\\d{1,4})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    *size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    return size->width() > 0 && size->height() > 0;
}

// All replacements happen in one pass, so a pair of mappings that swap two
// colours does not chain into one colour.
bool recolor(QByteArray *svg, const QStringList &mappings, QString *error)
{
    std::map<QString, QString> colours;
    QStringList alternatives;
    for (const QString &mapping : mappings) {
        const QStringList sides = mapping.split(QLatin1Char('='));
        if (sides.size() != 2 || !QColor::isValidColor(sides[0]) ||
            (sides[1] != QLatin1String("none") && !QColor::isValidColor(sides[1]))) {
            *error = QStringLiteral("--recolor wants FROM=TO with colours, got \"%1\"").arg(mapping);
            return false;
        }
        colours[sides[0].toLower()] = sides[1];
        alternatives.append(QRegularExpression::escape(sides[0]));
    }
    if (alternatives.isEmpty())
        return true;

    const QString text = QString::fromUtf8(*svg);
    const QRegularExpression pattern(alternatives.join(QLatin1Char('|')), QRegularExpression::CaseInsensitiveOption);
    QString result;
    int copied = 0;
    std::map<QString, int> hits;
    QRegularExpressionMatchIterator it = pattern.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const QString from = match.captured().toLower();
        result += text.midRef(copied, match.capturedStart() - copied);
        result += colours[from];
        copied = match.capturedEnd();
        ++hits[from];
    }
    result += text.midRef(copied);

    // A mapping that matches nothing means the drawing and the image list
    // went apart; the variant would silently equal the original.
    for (const auto &colour : colours) {
        if (hits[colour.first] == 0) {
            *error = QStringLiteral("--recolor %1: the drawing does not use that colour").arg(colour.first);
            return false;
        }
    }
    *svg = result.toUtf8();
    return true;
}

bool save(const QImage &image, const QString &path, QString *error)
{
    const QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    QImageWriter writer(&file, format);
    // Below the top quality the accent rings across its 16-pixel block and
    // tints the surface around it, a faint square on the table.
    if (format == "jpg")
        writer.setQuality(100);
    if (!writer.write(image)) {
        *error = QStringLiteral("cannot encode %1: %2").arg(path, writer.errorString());
        return false;
    }
    if (!file.commit()) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

int render(const QStringList &args)
{
    QString background;
    QStringList mappings;
    QStringList positional;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args[i];
        if ((arg == QLatin1String("--background") || arg == QLatin1String("--recolor")) && i + 1 < args.size()) {
            if (arg == QLatin1String("--background"))
                background = args[++i];
            else
                mappings.append(args[++i]);
        } else if (arg.startsWith(QLatin1String("--"))) {
            return fail(QStringLiteral("unknown option %1\n%2").arg(arg, QLatin1String(kUsage)));
        } else {
            positional.append(arg);
        }
    }
    QSize size;
    if (positional.size() != 3 || !parseSize(positional[2], &size))
        return fail(QLatin1String(kUsage));
    const QString drawing = positional[0];
    const QString output = positional[1];

    const QString suffix = QFileInfo(output).suffix().toLower();
    if (suffix != QLatin1String("png") && suffix != QLatin1String("jpg"))
        return fail(QStringLiteral("%1: only .png and .jpg are written").arg(output));
    QColor fill(Qt::transparent);
    if (!background.isEmpty()) {
        fill = QColor(background);
        if (!fill.isValid())
            return fail(QStringLiteral("--background %1 is not a colour").arg(background));
    }
    // Without alpha a JPG would turn the transparent parts black, which is
    // not any of the surfaces the images sit on.
    if (suffix == QLatin1String("jpg") && background.isEmpty())
        return fail(QStringLiteral("%1: a JPG needs --background, it has no transparency").arg(output));

    QFile file(drawing);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read %1: %2").arg(drawing, file.errorString()));
    QByteArray svg = file.readAll();
    for (const char *feature : kRefused) {
        if (svg.contains(feature))
            return fail(
                QStringLiteral("%1: uses %2, which does not render reliably").arg(drawing, QLatin1String(feature)));
    }
    QString error;
    if (!recolor(&svg, mappings, &error))
        return fail(QStringLiteral("%1: %2").arg(drawing, error));

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(fill);
    {
        WarningCollector collector;
        QSvgRenderer renderer;
        const bool loaded = renderer.load(svg);
        const QRectF viewBox = renderer.viewBoxF();
        if (loaded && renderer.isValid() && !viewBox.isEmpty()) {
            // Scaled without distortion and placed on whole pixels, so a
            // drawing made on the pixel grid stays sharp when it is reused
            // on a slightly different canvas.
            const qreal scale = std::min(size.width() / viewBox.width(), size.height() / viewBox.height());
            const QSizeF drawn = viewBox.size() * scale;
            const QPointF origin(std::round((size.width() - drawn.width()) / 2),
                                 std::round((size.height() - drawn.height()) / 2));
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            renderer.render(&painter, QRectF(origin, drawn));
        }
        if (!loaded || !renderer.isValid())
            return fail(QStringLiteral("%1: not a drawing QtSvg can read: %2")
                            .arg(drawing, collector.warnings().join(QLatin1String("; "))));
        if (viewBox.isEmpty())
            return fail(QStringLiteral("%1: no viewBox or size").arg(drawing));
        if (!collector.warnings().isEmpty())
            return fail(QStringLiteral("%1: %2").arg(drawing, collector.warnings().join(QLatin1String("; "))));
    }

    const QRgb first = image.pixel(0, 0);
    bool drawnSomething = false;
    for (int y = 0; y < image.height() && !drawnSomething; ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        drawnSomething = std::any_of(line, line + image.width(), [first](QRgb pixel) { return pixel != first; });
    }
    if (!drawnSomething)
        return fail(QStringLiteral("%1: nothing visible at %2x%3").arg(drawing).arg(size.width()).arg(size.height()));

    const QImage final = suffix == QLatin1String("jpg") ? image.convertToFormat(QImage::Format_RGB32)
                                                        : image.convertToFormat(QImage::Format_ARGB32);
    if (!save(final, output, &error))
        return fail(error);
    return 0;
}

struct SheetEntry
{
    QString group;
    QString resource;
    QImage image;
    QColor surface;
};

// The contact sheet: every image at its real pixel size on the surface it
// sits on in the program, grouped by page, with its resource name below.
int sheet(const QStringList &args)
{
    if (args.size() != 2 && !(args.size() == 4 && args[2] == QLatin1String("--zoom")))
        return fail(QLatin1String(kUsage));
    const int zoom = args.size() == 4 ? args[3].toInt() : 1;
    if (zoom < 1 || zoom > 8)
        return fail(QStringLiteral("--zoom wants 1 to 8"));

    QFile list(args[0]);
    if (!list.open(QIODevice::ReadOnly | QIODevice::Text))
        return fail(QStringLiteral("cannot read %1: %2").arg(args[0], list.errorString()));
    std::vector<SheetEntry> entries;
    QTextStream stream(&list);
    int lineNumber = 0;
    while (!stream.atEnd()) {
        const QString line = stream.readLine();
        ++lineNumber;
        if (line.trimmed().isEmpty())
            continue;
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() != 4)
            return fail(QStringLiteral("%1:%2: want group, resource, file and surface").arg(args[0]).arg(lineNumber));
        SheetEntry entry{fields[0], fields[1], QImage(fields[2]), QColor(fields[3])};
        if (entry.image.isNull())
            return fail(QStringLiteral("%1:%2: cannot read %3").arg(args[0]).arg(lineNumber).arg(fields[2]));
        if (!entry.surface.isValid())
            return fail(QStringLiteral("%1:%2: %3 is not a colour").arg(args[0]).arg(lineNumber).arg(fields[3]));
        entries.push_back(entry);
    }
    if (entries.empty())
        return fail(QStringLiteral("%1 lists no images").arg(args[0]));

    QFont labelFont(QStringLiteral("DejaVu Sans"));
    labelFont.setPixelSize(12);
    QFont groupFont(labelFont);
    groupFont.setPixelSize(16);
    groupFont.setBold(true);
    const QFontMetrics label(labelFont);
    const QFontMetrics title(groupFont);

    const int pageWidth = 1400;
    const int margin = 24;
    const int gap = 12;
    const int padding = 14;
    struct Placed
    {
        const SheetEntry *entry;
        QRect tile;
    };
    std::vector<Placed> placed;
    std::vector<std::pair<QString, QPoint>> titles;

    // Two passes over the same layout: the first finds the page height.
    int x = margin;
    int y = margin;
    int rowHeight = 0;
    QString group;
    for (const SheetEntry &entry : entries) {
        if (entry.group != group) {
            group = entry.group;
            y += rowHeight + (placed.empty() ? 0 : 2 * gap);
            titles.emplace_back(group, QPoint(margin, y + title.ascent()));
            y += title.height() + gap;
            x = margin;
            rowHeight = 0;
        }
        const QSize shown = entry.image.size() * zoom;
        const QString caption = QStringLiteral(":/%1").arg(entry.resource);
        const int width = std::max(shown.width(), label.horizontalAdvance(caption)) + 2 * padding;
        const int height = shown.height() + 2 * padding + 2 * label.height() + 4;
        if (x + width > pageWidth - margin && x > margin) {
            x = margin;
            y += rowHeight + gap;
            rowHeight = 0;
        }
        placed.push_back({&entry, QRect(x, y, width, height)});
        x += width + gap;
        rowHeight = std::max(rowHeight, height);
    }
    const int pageHeight = y + rowHeight + margin;

    QImage page(pageWidth, pageHeight, QImage::Format_RGB32);
    page.fill(QColor(10, 10, 10));
    QPainter painter(&page);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(groupFont);
    painter.setPen(QColor(50, 227, 233));
    for (const auto &t : titles)
        painter.drawText(t.second, t.first);

    painter.setFont(labelFont);
    for (const Placed &p : placed) {
        const SheetEntry &entry = *p.entry;
        painter.fillRect(p.tile, entry.surface);
        const QSize shown = entry.image.size() * zoom;
        const QRect target(p.tile.left() + (p.tile.width() - shown.width()) / 2, p.tile.top() + padding, shown.width(),
                           shown.height());
        // Nearest-neighbour zoom, so the pixel grid stays visible when checking sharpness.
        painter.drawImage(target, entry.image);
        const int textTop = target.bottom() + 1 + padding / 2;
        painter.setPen(QColor(220, 221, 218));
        painter.drawText(QRect(p.tile.left(), textTop, p.tile.width(), label.height()), Qt::AlignHCenter,
                         QStringLiteral(":/%1").arg(entry.resource));
        painter.setPen(QColor(136, 138, 133));
        painter.drawText(QRect(p.tile.left(), textTop + label.height() + 2, p.tile.width(), label.height()),
                         Qt::AlignHCenter,
                         QStringLiteral("%1 x %2").arg(entry.image.width()).arg(entry.image.height()));
    }
    painter.end();

    QString error;
    if (!save(page, args[1], &error))
        return fail(error);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const bool wantsSheet = argc > 1 && qstrcmp(argv[1], "--sheet") == 0;
    if (!wantsSheet) {
        // Drawings hold no text, so rendering needs no fonts and no platform.
        QCoreApplication app(argc, argv);
        return render(app.arguments().mid(1));
    }
    // The sheet's captions need fonts, which come with a platform; the
    // offscreen one needs no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    return sheet(app.arguments().mid(2));
}
