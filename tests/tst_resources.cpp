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

// The contract with the pages: these names, at these pixel sizes.
const std::map<QString, QSize> kImages = [] {
    std::map<QString, QSize> all;
    const auto add = [&all](QSize size, const QStringList &names) {
        for (const QString &name : names)
            all[name] = size;
    };
    add({64, 32}, {":/png/history/battery@2x.png", ":/png/history/battery8@2x.png", ":/png/history/battery6@2x.png",
                   ":/png/history/battery4@2x.png", ":/png/history/battery2@2x.png", ":/png/history/battery0@2x.png"});
    add({48, 36}, {":/png/history/wifi@2x.png", ":/png/history/wifi2@2x.png", ":/png/history/wifi3@2x.png",
                   ":/png/history/wifi4@2x.png"});
    add({120, 120}, {":/png/mainpage/male@2x.png", ":/png/mainpage/male1@2x.png", ":/png/mainpage/female@2x.png",
                     ":/png/mainpage/female1@2x.png"});
    add({96, 96}, {":/png/flashon@2x.png", ":/png/flashon_off@2x.png", ":/png/camera/shutter@2x.png"});
    add({40, 40}, {":/pic/checkon.jpg", ":/pic/checkoff.jpg", ":/pic/wifi_lock.jpg", ":/pic/wifi_select.jpg",
                   ":/pic/wifi_saved.jpg"});
    add({48, 40}, {":/pic/wifi_sig3.jpg", ":/pic/wifi_sig2.jpg", ":/pic/wifi_sig1.jpg", ":/pic/wifi_sig0.jpg"});
    add({48, 48}, {":/pic/pwdshow.jpg", ":/pic/pwdhide.jpg", ":/png/back@2x.png"});
    add({64, 64}, {":/pic/update_new.jpg"});
    for (const char *item : {"setup", "history", "camera", "power"})
        add({64, 64}, {QStringLiteral(":/png/menu/%1@2x.png").arg(QLatin1String(item)),
                       QStringLiteral(":/png/menu/%1_on@2x.png").arg(QLatin1String(item))});
    for (const char *item : {"wifi", "timezone", "sleep", "country", "referral", "param", "machineid", "update",
                             "language", "email", "printer", "reset"})
        add({48, 48}, {QStringLiteral(":/png/setup/%1@2x.png").arg(QLatin1String(item))});
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

int countPixels(const QImage &image, const std::function<bool(QColor)> &wanted)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += wanted(image.pixelColor(x, y)) ? 1 : 0;
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
bool isAccent(QColor c)
{
    return c.alpha() > 160 && c.red() < 120 && c.green() > 170 && c.blue() > 170;
}
bool isLit(QColor c)
{
    return c.alpha() > 200 && c.lightness() > 170;
}
bool isSolid(QColor c)
{
    return c.alpha() > 128;
}

double differingShare(const QImage &a, const QImage &b)
{
    int differing = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            differing += near(a.pixelColor(x, y), b.pixelColor(x, y), 24) ? 0 : 1;
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
        const auto pair = [](const QString &off, const QString &on) {
            QTest::newRow(qPrintable(on)) << QStringList{off, on} << QStringLiteral("accent");
        };
        pair(QStringLiteral(":/png/mainpage/male1@2x.png"), QStringLiteral(":/png/mainpage/male@2x.png"));
        pair(QStringLiteral(":/png/mainpage/female1@2x.png"), QStringLiteral(":/png/mainpage/female@2x.png"));
        pair(QStringLiteral(":/png/flashon_off@2x.png"), QStringLiteral(":/png/flashon@2x.png"));
        pair(QStringLiteral(":/pic/checkoff.jpg"), QStringLiteral(":/pic/checkon.jpg"));
        for (const QString item : {"setup", "history", "camera", "power"})
            pair(QStringLiteral(":/png/menu/%1@2x.png").arg(item), QStringLiteral(":/png/menu/%1_on@2x.png").arg(item));
        QTest::newRow("battery") << QStringList{":/png/history/battery0@2x.png", ":/png/history/battery2@2x.png",
                                                ":/png/history/battery4@2x.png", ":/png/history/battery6@2x.png",
                                                ":/png/history/battery8@2x.png", ":/png/history/battery@2x.png"}
                                 << QStringLiteral("solid");
        QTest::newRow("status bar signal") << QStringList{":/png/history/wifi4@2x.png", ":/png/history/wifi3@2x.png",
                                                          ":/png/history/wifi2@2x.png", ":/png/history/wifi@2x.png"}
                                           << QStringLiteral("lit");
        QTest::newRow("table signal") << QStringList{":/pic/wifi_sig0.jpg", ":/pic/wifi_sig1.jpg",
                                                     ":/pic/wifi_sig2.jpg", ":/pic/wifi_sig3.jpg"}
                                      << QStringLiteral("lit");
    }

    void statesShowMoreOfTheirMark()
    {
        QFETCH(QStringList, images);
        QFETCH(QString, mark);
        const std::function<bool(QColor)> marked = mark == QLatin1String("accent") ? isAccent
                                                   : mark == QLatin1String("lit")  ? isLit
                                                                                   : isSolid;
        QVector<int> counts;
        for (const QString &name : images) {
            const QImage image = load(name);
            QVERIFY2(!image.isNull(), qPrintable(name));
            counts << countPixels(image, marked);
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
