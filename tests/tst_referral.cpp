// SPDX-License-Identifier: GPL-2.0-or-later
// The referral criteria: age in months, every band of the three criteria, and the page that chooses one.
#include "camcfg.h"
#include "gdata.h"
#include "maindialog.h"
#include "referral.h"
#include "testsupport.h"

#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

#include <memory>

Q_DECLARE_METATYPE(referral::Refraction)

namespace {

// The published tables, one row per age band, months inclusive on both ends.
struct Band
{
    int criterion;
    const char *name;
    int fromMonths;
    int toMonths;
    double anisometropia;
    double sphereAbove;
    double sphereBelow;
    double cylinder;
};

const Band kBands[] = {
    {referral::Matta, "Matta", 0, 12, 1.25, 3.0, -2.0, 1.0},
    {referral::Matta, "Matta", 13, 36, 1.25, 1.25, -2.0, 1.0},
    {referral::Matta, "Matta", 37, 72, 1.25, 1.25, -1.0, 1.0},
    {referral::Matta, "Matta", 73, 240, 1.25, 1.0, -1.0, 1.25},
    {referral::Arnold, "Arnold", 0, 8, 1.5, 3.0, -3.0, 2.0},
    {referral::Arnold, "Arnold", 9, 72, 1.0, 2.5, -2.25, 2.0},
    {referral::Arnold, "Arnold", 73, 240, 1.25, 2.0, -1.5, 1.5},
    {referral::Arthur2, "Arthur2", 0, 240, 1.5, 3.5, -3.0, 2.5},
};

// Just inside a bound: finer than the quarter-dioptre steps the server sends,
// so a bound that is off by one step cannot pass unnoticed.
constexpr double kInside = 0.01;
// Far enough from a bound that the other eye stays clear of it.
constexpr double kStep = 0.25;

referral::Refraction eyes(double leftSphere, double rightSphere, double leftCylinder = 0, double rightCylinder = 0)
{
    return {float(leftSphere), float(rightSphere), float(leftCylinder), float(rightCylinder)};
}

} // namespace

class TestReferral : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    // The device folder and the service object, made on first use: the
    // band table has hundreds of rows that need neither.
    GData &data()
    {
        if (!m_data)
            setUp();
        return *m_data;
    }

    void setResult(const QString &sphere, const QString &cylinder = QStringLiteral("0"))
    {
        data().m_strOSSphere = data().m_strODSphere = sphere;
        data().m_strOSCylinder = data().m_strODCylinder = cylinder;
    }

    // Both bounds of each sign, every value once in each eye, and just inside.
    static void addBandRows(const Band &band, int months)
    {
        const auto row = [&](const char *what, const char *side, const referral::Refraction &refraction, int verdict) {
            QTest::addRow("%s %dm %s %s", band.name, months, what, side)
                << band.criterion << months << refraction << verdict;
        };
        for (const double sign : {1.0, -1.0}) {
            const char *side = sign > 0 ? "+" : "-";
            // Left minus right, split so that neither sphere nears its own bound.
            const double a = sign * band.anisometropia / 2;
            const double aInside = sign * (band.anisometropia - kInside) / 2;
            row("A at bound", side, eyes(a, -a), referral::kRefer);
            row("A inside", side, eyes(aInside, -aInside), referral::kPass);
            const double s = sign > 0 ? band.sphereAbove : band.sphereBelow;
            row("S at bound left", side, eyes(s, s - sign * kStep), referral::kRefer);
            row("S at bound right", side, eyes(s - sign * kStep, s), referral::kRefer);
            row("S inside", side, eyes(s - sign * kInside, s - sign * kInside), referral::kPass);
            const double c = sign * band.cylinder;
            row("C at bound left", side, eyes(0, 0, c, c - sign * kStep), referral::kRefer);
            row("C at bound right", side, eyes(0, 0, c - sign * kStep, c), referral::kRefer);
            row("C inside", side, eyes(0, 0, c - sign * kInside, c - sign * kInside), referral::kPass);
        }
    }

    // The main window, with its settings pages, over the GData of this test.
    std::unique_ptr<MainDialog> openReferralPage()
    {
        data();
        auto window = std::make_unique<MainDialog>(nullptr, MainDialog::Workers::DoNotStart);
        window->findChild<QTimer *>(QStringLiteral("timerMain"))->stop();
        window->show();
        window->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetBase"))
            ->setCurrentIndex(MainDialog::BasePageMenu);
        click(*window, QStringLiteral("Setup"));
        click(*window, QStringLiteral("ReferralSetting"));
        return window;
    }

    static QPushButton *button(MainDialog &window, const QString &name)
    {
        return window.findChild<QPushButton *>(QStringLiteral("button") + name);
    }

    static void click(MainDialog &window, const QString &name)
    {
        QTest::mouseClick(button(window, name), Qt::LeftButton);
    }

    static QWidget *shownPage(MainDialog &window)
    {
        return window.findChild<QStackedWidget *>(QStringLiteral("stackedWidgetReferral"))->currentWidget();
    }

    // The checked buttons and the page shown, as "Matta on pageMatta".
    static QString shownCriterion(MainDialog &window)
    {
        QStringList checked;
        for (const QString &name : {QStringLiteral("Matta"), QStringLiteral("Arthur2"), QStringLiteral("Arnold")}) {
            if (button(window, name)->isChecked())
                checked << name;
        }
        return checked.join(QLatin1Char(' ')) + QStringLiteral(" on ") + shownPage(window)->objectName();
    }

    QString criterionOnDisk() const
    {
        const QByteArray line = TestDevice::readFile(m_device->configFile());
        return QString::fromUtf8(line).split(QLatin1Char('|')).value(CamCfg::ReferralCriterion - 1);
    }

private slots:
    void init() { freezeClock(); }
    void cleanup() { tearDown(); }

    // --- the setting, and values that are no refraction ---

    void settingPicksTheCriterion_data()
    {
        QTest::addColumn<int>("setting");
        QTest::addColumn<int>("atMattaBound");
        QTest::addColumn<int>("atArnoldBound");
        // At 48 months, +1.25 is Matta's bound only, +2.50 Arnold's as well;
        // Arthur2 refers at neither.
        QTest::newRow("1 Matta") << 1 << referral::kRefer << referral::kRefer;
        QTest::newRow("0 Arnold") << 0 << referral::kPass << referral::kRefer;
        QTest::newRow("2 Arthur2") << 2 << referral::kPass << referral::kPass;
        QTest::newRow("3 unknown") << 3 << referral::kPass << referral::kPass;
        QTest::newRow("-1 unknown") << -1 << referral::kPass << referral::kPass;
    }

    void settingPicksTheCriterion()
    {
        QFETCH(int, setting);
        QFETCH(int, atMattaBound);
        QFETCH(int, atArnoldBound);
        data().m_nReferralCriterion = setting;
        // The age follows the device's local date: 20:00 UTC on the 9th is
        // already the 10th at +8, 14 days short of the 24th, which rounds up.
        data().m_dateBirthday = QDate(2020, 3, 24);
        data().m_strTimeZone = QStringLiteral("0");
        m_nowMs = QDateTime(QDate(2024, 3, 9), QTime(20, 0), Qt::UTC).toMSecsSinceEpoch();
        QCOMPARE(data().getMonthofAge(), 47);
        data().m_strTimeZone = QStringLiteral("8");
        QCOMPARE(data().getMonthofAge(), 48);
        setResult(QStringLiteral("+1.25"));
        QCOMPARE(data().calculateReferral(), atMattaBound);
        setResult(QStringLiteral("+2.50"));
        QCOMPARE(data().calculateReferral(), atArnoldBound);
        // The server's way of writing no refraction at all.
        setResult(QStringLiteral("-0.00"), QStringLiteral("-0.00"));
        QCOMPARE(data().calculateReferral(), referral::kPass);
    }

    // --- age in months ---

    void ageRoundsByDayOfMonth_data()
    {
        QTest::addColumn<QDate>("birthday");
        QTest::addColumn<QDate>("today");
        QTest::addColumn<int>("months");
        QTest::newRow("15 days short") << QDate(2020, 5, 19) << QDate(2022, 5, 4) << 23;
        QTest::newRow("14 days short") << QDate(2020, 5, 20) << QDate(2022, 5, 6) << 24;
        QTest::newRow("14 days over") << QDate(2020, 5, 5) << QDate(2022, 5, 19) << 24;
        QTest::newRow("15 days over") << QDate(2020, 5, 5) << QDate(2022, 5, 20) << 25;
        QTest::newRow("across a new year") << QDate(2019, 12, 25) << QDate(2020, 1, 9) << 0;
        QTest::newRow("birth day") << QDate(2024, 2, 29) << QDate(2024, 2, 29) << 0;
        // Day numbers count, not elapsed days: 16 days after the 31st of
        // January is the 16th of February, 15 day numbers short.
        QTest::newRow("short month") << QDate(2021, 1, 31) << QDate(2021, 2, 16) << 0;
        QTest::newRow("31st to the 1st") << QDate(2021, 1, 31) << QDate(2021, 3, 1) << 1;
    }

    void ageRoundsByDayOfMonth()
    {
        QFETCH(QDate, birthday);
        QFETCH(QDate, today);
        QFETCH(int, months);
        QCOMPARE(referral::monthsOfAge(birthday, today), months);
    }

    // --- the criteria ---

    void everyBandBoundary_data()
    {
        QTest::addColumn<int>("criterion");
        QTest::addColumn<int>("months");
        QTest::addColumn<referral::Refraction>("eyes");
        QTest::addColumn<int>("verdict");
        for (const Band &band : kBands) {
            addBandRows(band, band.fromMonths);
            addBandRows(band, band.toMonths);
        }
    }

    void everyBandBoundary()
    {
        QFETCH(int, criterion);
        QFETCH(int, months);
        QFETCH(referral::Refraction, eyes);
        QFETCH(int, verdict);
        QCOMPARE(referral::judge(criterion, months, eyes), verdict);
    }

    // --- the settings page ---

    void choosingSavesAtOnceAndTheTextsFit()
    {
        // On disk a value that neither opening nor choosing leaves behind.
        CamCfg &cfg = *data().m_pCamCfg;
        cfg.setValue(CamCfg::ReferralCriterion, QStringLiteral("9"));
        cfg.dogenCurrentCFG();
        QCOMPARE(cfg.saveCFG2File(), QStringLiteral("1"));
        data().m_nReferralCriterion = 7;
        auto window = openReferralPage();
        QCOMPARE(shownCriterion(*window), QStringLiteral("Arthur2 on pageArthur2"));
        QCOMPARE(criterionOnDisk(), QStringLiteral("9"));

        for (const auto &[criterion, setting] : {std::pair<QString, int>{"Matta", 1}, {"Arnold", 0}, {"Arthur2", 2}}) {
            click(*window, criterion);
            QCOMPARE(data().m_nReferralCriterion, setting);
            QCOMPARE(criterionOnDisk(), QString::number(setting));
            QCOMPARE(shownCriterion(*window), criterion + QStringLiteral(" on page") + criterion);
            // Layouts of a page just shown settle on the next event loop pass.
            QCoreApplication::processEvents();
            QWidget *page = shownPage(*window);
            const QList<QLabel *> labels = page->findChildren<QLabel *>();
            QVERIFY(!labels.isEmpty());
            for (const QLabel *label : labels) {
                // Wider than its label, a line would wrap onto a second one.
                const int width = label->fontMetrics().horizontalAdvance(label->text());
                QVERIFY2(width <= label->contentsRect().width(), qPrintable(label->text()));
                QVERIFY2(label->geometry().bottom() < page->height(), qPrintable(label->text()));
            }
            // Opened again, the page shows the criterion chosen.
            window.reset();
            window = openReferralPage();
            QCOMPARE(shownCriterion(*window), criterion + QStringLiteral(" on page") + criterion);
        }

        window.reset();
        GData restarted(m_cmd.get(), makeSimulatedDevices());
        restarted.Init(nullptr);
        QCOMPARE(restarted.m_nReferralCriterion, 2);
    }
};

QTEST_MAIN(TestReferral)
#include "tst_referral.moc"
