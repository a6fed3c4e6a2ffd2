// SPDX-License-Identifier: GPL-2.0-or-later
// The compiled-in image set: every name the pages load, at its size, with the state variants telling apart.
#include <QColor>
#include <QDirIterator>
#include <QImage>
#include <QImageReader>
#include <QTest>

#include <functional>
#include <iterator>
#include <map>

namespace {

// Each name in `pattern`, "%1" replaced by each of `items`.
QStringList names(const char *pattern, const QStringList &items)
{
    QStringList all;
    for (const QString &item : items)
        all << QString::fromLatin1(pattern).arg(item);
    return all;
}

// The contract with the pages: these names, at these pixel sizes.
const std::map<QString, QSize> kImages = [] {
    std::map<QString, QSize> all;
    const auto add = [&all](QSize size, const QStringList &list) {
        for (const QString &name : list)
            all[name] = size;
    };
    add({64, 32}, names(":/png/history/battery%1@2x.png", {"", "8", "6", "4", "2", "0"}));
    add({48, 36}, names(":/png/history/wifi%1@2x.png", {"", "2", "3", "4"}));
    add({120, 120}, names(":/png/mainpage/%1@2x.png", {"male", "male1", "female", "female1"}));
    add({96, 96}, {":/png/flashon@2x.png", ":/png/flashon_off@2x.png", ":/png/camera/shutter@2x.png"});
    add({40, 40}, names(":/pic/%1.jpg", {"checkon", "checkoff", "wifi_lock", "wifi_select", "wifi_saved"}));
    add({48, 40}, names(":/pic/wifi_sig%1.jpg", {"3", "2", "1", "0"}));
    add({48, 48}, {":/pic/pwdshow.jpg", ":/pic/pwdhide.jpg", ":/png/back@2x.png"});
    add({64, 64}, {":/pic/update_new.jpg"});
    add({64, 64}, names(":/png/menu/%1@2x.png",
                        {"setup", "history", "camera", "power", "setup_on", "history_on", "camera_on", "power_on"}));
    add({48, 48}, names(":/png/setup/%1@2x.png", {"wifi", "timezone", "sleep", "country", "referral", "param",
                                                  "machineid", "update", "language", "email", "printer", "reset"}));
    add({32, 32}, {":/png/chevron@2x.png"});
    add({160, 160}, {":/png/logo@2x.png"});
    add({200, 200}, {":/png/nowifi@2x.png"});
    return all;
}();

// JPGs cannot be transparent, so they carry the surface they are shown on.
const QColor kPanel(36, 36, 36);
const QColor kRaised(48, 48, 48);

QImage load(const QString &name)
{
    return QImage(name).convertToFormat(QImage::Format_ARGB32);
}

// The pixels of `image` for which `wanted` holds, by position.
int countPixels(const QImage &image, const std::function<bool(QPoint)> &wanted)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += wanted(QPoint(x, y)) ? 1 : 0;
    return count;
}

bool near(QColor a, QColor b, int tolerance)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance && qAbs(a.alpha() - b.alpha()) <= tolerance;
}

// Marks of the states the user must tell apart, all solid enough to be seen:
// the accent's hue (antialiased edges and the faint tint of a selected
// button's face do not count); lit parts, light where dimmed parts are
// translucent or dark grey; the battery's charge.
bool showsMark(const QString &mark, QColor c)
{
    if (mark == QLatin1String("accent"))
        return c.alpha() > 160 && c.red() < 120 && c.green() > 170 && c.blue() > 170;
    return mark == QLatin1String("lit") ? c.alpha() > 200 && c.lightness() > 170 : c.alpha() > 128;
}

double differingShare(const QImage &a, const QImage &b)
{
    const int differing = countPixels(a, [&](QPoint p) { return !near(a.pixelColor(p), b.pixelColor(p), 24); });
    return double(differing) / (a.width() * a.height());
}

} // namespace

class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void everyImageIsCompiledInAtItsSizeOnItsSurface_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("size");
        for (const auto &[name, size] : kImages)
            QTest::newRow(qPrintable(name)) << name << size;
    }

    void everyImageIsCompiledInAtItsSizeOnItsSurface()
    {
        QFETCH(QString, name);
        QFETCH(QSize, size);
        QImageReader reader(name);
        QVERIFY2(reader.canRead(), qPrintable(reader.errorString()));
        // The format is read from the content, so a PNG saved under a .jpg
        // name (with its transparency) is caught here.
        const bool png = name.endsWith(QLatin1String(".png"));
        QCOMPARE(reader.format(), png ? QByteArray("png") : QByteArray("jpeg"));
        const QImage image = reader.read();
        QCOMPARE(image.size(), size);
        QCOMPARE(image.hasAlphaChannel(), png);

        if (!png) {
            const QColor surface = name.endsWith(QLatin1String("update_new.jpg")) ? kRaised : kPanel;
            const int right = size.width() - 1;
            const int bottom = size.height() - 1;
            for (const QPoint corner : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)})
                QVERIFY2(near(image.pixelColor(corner), surface, 4),
                         qPrintable(image.pixelColor(corner).name() + QStringLiteral(" is not the surface")));
            return;
        }
        // A clear border, so nothing is clipped and the page shows through,
        // and the drawing centred within a few pixels, so icons line up.
        QRect area;
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                if (qAlpha(image.pixel(x, y)) > 0)
                    area |= QRect(x, y, 1, 1);
        QVERIFY(!area.isEmpty());
        const QRect inside = QRect(QPoint(0, 0), size).adjusted(1, 1, -1, -1);
        QVERIFY2(inside.contains(area), "the drawing touches the edge");
        const int tolerance = qMax(2, size.width() / 16);
        QVERIFY2(qAbs(area.left() - (size.width() - 1 - area.right())) <= tolerance &&
                     qAbs(area.top() - (size.height() - 1 - area.bottom())) <= tolerance,
                 "the drawing is off centre");
    }

    void onlyTheListedImagesAreCompiledInAndNoTwoAreAlike()
    {
        std::map<QString, QImage> found;
        for (const QString &root : {QStringLiteral(":/png"), QStringLiteral(":/pic")}) {
            QDirIterator it(root, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString name = it.next();
                QVERIFY2(kImages.count(name), qPrintable(name + QStringLiteral(" is not listed")));
                found[name] = load(name);
            }
        }
        QCOMPARE(found.size(), kImages.size());

        // Catches a state or a page drawn from the wrong drawing: every image
        // differs from every other of its size in a visible share of pixels.
        for (auto a = found.begin(); a != found.end(); ++a) {
            for (auto b = std::next(a); b != found.end(); ++b) {
                if (a->second.size() != b->second.size())
                    continue;
                const double share = differingShare(a->second, b->second);
                QVERIFY2(share > 0.01, qPrintable(QStringLiteral("%1 and %2 differ in only %3% of pixels")
                                                      .arg(a->first, b->first)
                                                      .arg(share * 100, 0, 'f', 1)));
            }
        }
    }

    // What the user must tell apart: each list runs from the least to the
    // most of one kind of pixel, strictly more at every step.
    void statesShowMoreOfTheirMark_data()
    {
        QTest::addColumn<QStringList>("images");
        QTest::addColumn<QString>("mark");
        const auto row = [](const QString &name, const QStringList &images, const char *mark) {
            QTest::newRow(qPrintable(name)) << images << QString::fromLatin1(mark);
        };
        for (const QString item : {"mainpage/male", "mainpage/female"})
            row(item, names(":/png/%1@2x.png", {item + "1", item}), "accent");
        row("flash", {":/png/flashon_off@2x.png", ":/png/flashon@2x.png"}, "accent");
        row("check", {":/pic/checkoff.jpg", ":/pic/checkon.jpg"}, "accent");
        for (const QString item : {"setup", "history", "camera", "power"})
            row(item, names(":/png/menu/%1@2x.png", {item, item + "_on"}), "accent");
        row("battery", names(":/png/history/battery%1@2x.png", {"0", "2", "4", "6", "8", ""}), "solid");
        row("status bar signal", names(":/png/history/wifi%1@2x.png", {"4", "3", "2", ""}), "lit");
        row("table signal", names(":/pic/wifi_sig%1.jpg", {"0", "1", "2", "3"}), "lit");
    }

    void statesShowMoreOfTheirMark()
    {
        QFETCH(QStringList, images);
        QFETCH(QString, mark);
        QVector<int> counts;
        for (const QString &name : images) {
            const QImage image = load(name);
            QVERIFY2(!image.isNull(), qPrintable(name));
            counts << countPixels(image, [&](QPoint p) { return showsMark(mark, image.pixelColor(p)); });
        }
        for (int i = 1; i < counts.size(); ++i)
            QVERIFY2(counts[i] > counts[i - 1],
                     qPrintable(images[i] + QStringLiteral(" shows no more than the one before")));
        // An unselected state shows no accent at all; even the weakest signal
        // lights something, or it would read as "no network".
        if (mark == QLatin1String("accent")) {
            QCOMPARE(counts.first(), 0);
            QVERIFY(counts.last() >= load(images.last()).width());
        } else {
            QVERIFY(counts.first() > 0);
        }
    }
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
