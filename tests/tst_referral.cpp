// SPDX-License-Identifier: GPL-2.0-or-later
// The referral criteria: age in months, every band of the three criteria, and the page that chooses one.
#include "camcfg.h"
#include "cmdutil.h"
#include "gdata.h"
#include "maindialog.h"
#include "referral.h"
#include "systemclock.h"
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
    referral::Refraction result;
    result.leftSphere = float(leftSphere);
    result.rightSphere = float(rightSphere);
    result.leftCylinder = float(leftCylinder);
    result.rightCylinder = float(rightCylinder);
    return result;
}

const QStringList kMattaTexts = {
    QStringLiteral("Matta/Silbert"),
    QStringLiteral("sensitivity: 98% specificity: 68%"),
    QStringLiteral("Indication of source: J AAPOS. 2008; 12:490-492"),
    QStringLiteral("In regions/countries where these is universal healthcare, you can choose"),
    QStringLiteral("the \"Matta/Silbert\". It may be beneficial to optimise sensitivity, so that"),
    QStringLiteral("more children enter into optometry care and few problems are missed."),
};
const QStringList kArthur2Texts = {
    QStringLiteral("sensitivity: 73% specificity: 92%"),
    QStringLiteral("Indication of source: J AAPOS. 2011; 15:551-555"),
    QStringLiteral("In regions where resources are scarce, you can choose the \"Arthur2\"."),
    QStringLiteral("It may be more cost effective to target high specificity to minimize"),
    QStringLiteral("false referrals."),
};
const QStringList kArnoldTexts = {
    QStringLiteral("sensitivity: 92% specificity: 90%"),
    QStringLiteral("Indication of source: the criterion publisher's web site"),
    QStringLiteral("Arnold is best at maximizing sensitivity and specificity for the latest AAPOS"),
    QString::fromUtf8("referral criteria.You can choose \u201cArnold\u201d for routine check."),
};

} // namespace

class TestReferral : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<CmdUtil> m_cmd;
    std::unique_ptr<GData> m_data;
    qint64 m_nowMs = 0;

    // The device folder and the service object, made on first use: the
    // band table has hundreds of rows that need neither.
    GData &data()
    {
        if (!m_data) {
            m_device = std::make_unique<TestDevice>();
            m_cmd = std::make_unique<CmdUtil>();
            m_data = std::make_unique<GData>(m_cmd.get());
            m_data->Init(nullptr);
            g_pData = m_data.get();
        }
        return *m_data;
    }

    // The device clock at a local time of the given zone.
    void setLocalNow(const QDateTime &local, const QString &zone = QStringLiteral("0"))
    {
        data().m_strTimeZone = zone;
        const qint64 offsetMs = qint64(zone.toDouble() * 3600.0) * 1000;
        m_nowMs = QDateTime(local.date(), local.time(), Qt::UTC).toMSecsSinceEpoch() - offsetMs;
    }

    void setResult(const QString &osSphere, const QString &odSphere, const QString &osCylinder = QStringLiteral("0"),
                   const QString &odCylinder = QStringLiteral("0"))
    {
        data().m_strOSSphere = osSphere;
        data().m_strODSphere = odSphere;
        data().m_strOSCylinder = osCylinder;
        data().m_strODCylinder = odCylinder;
    }

    void addBandRows(const Band &band, int months)
    {
        const auto row = [&](const char *what, const referral::Refraction &refraction, int expected) {
            QTest::addRow("%s %dm %s", band.name, months, what) << band.criterion << months << refraction << expected;
        };
        const double a = band.anisometropia;
        const double in = a - kInside;
        row("A = +bound", eyes(a / 2, -a / 2), referral::kRefer);
        row("A = -bound", eyes(-a / 2, a / 2), referral::kRefer);
        row("A inside +bound", eyes(in / 2, -in / 2), referral::kPass);
        row("A inside -bound", eyes(-in / 2, in / 2), referral::kPass);

        const double up = band.sphereAbove;
        row("S upper bound left", eyes(up, up - kStep), referral::kRefer);
        row("S upper bound right", eyes(up - kStep, up), referral::kRefer);
        row("S inside upper bound", eyes(up - kInside, up - kInside), referral::kPass);
        const double down = band.sphereBelow;
        row("S lower bound left", eyes(down, down + kStep), referral::kRefer);
        row("S lower bound right", eyes(down + kStep, down), referral::kRefer);
        row("S inside lower bound", eyes(down + kInside, down + kInside), referral::kPass);

        const double c = band.cylinder;
        row("C = +bound left", eyes(0, 0, c, c - kStep), referral::kRefer);
        row("C = +bound right", eyes(0, 0, c - kStep, c), referral::kRefer);
        row("C inside +bound", eyes(0, 0, c - kInside, c - kInside), referral::kPass);
        row("C = -bound left", eyes(0, 0, -c, -c + kStep), referral::kRefer);
        row("C = -bound right", eyes(0, 0, -c + kStep, -c), referral::kRefer);
        row("C inside -bound", eyes(0, 0, -c + kInside, -c + kInside), referral::kPass);
    }

    // The main window, with its settings pages, over the GData of this test.
    std::unique_ptr<MainDialog> openReferralPage()
    {
        data();
        auto window = std::make_unique<MainDialog>(nullptr, MainDialog::Workers::DoNotStart);
        window->findChild<QTimer *>(QStringLiteral("timerMain"))->stop();
        window->show();
        QStackedWidget *base = window->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetBase"));
        base->setCurrentIndex(MainDialog::BasePageMenu);
        click(*window, "buttonSetup");
        click(*window, "buttonReferralSetting");
        return window;
    }

    static void click(MainDialog &window, const char *name)
    {
        auto *button = window.findChild<QPushButton *>(QLatin1String(name));
        QVERIFY2(button, name);
        QTest::mouseClick(button, Qt::LeftButton);
    }

    static QStringList shownTexts(MainDialog &window)
    {
        QWidget *page = window.findChild<QStackedWidget *>(QStringLiteral("stackedWidgetReferral"))->currentWidget();
        QStringList texts;
        const QList<QLabel *> labels = page->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            texts << label->text();
        return texts;
    }

    QString criterionOnDisk() const
    {
        const QByteArray line = TestDevice::readFile(m_device->configFile());
        return QString::fromUtf8(line).split(QLatin1Char('|')).value(CamCfg::ReferralCriterion - 1);
    }

private slots:
    void init()
    {
        m_nowMs = 1700000000000LL;
        systemclock::setSourceForTesting([this] { return m_nowMs; });
    }

    void cleanup()
    {
        g_pData = nullptr;
        m_data.reset();
        m_cmd.reset();
        systemclock::setSourceForTesting(nullptr);
        m_device.reset();
    }

    // --- values that are no refraction, criteria that are not known ---

    void negativeZeroNeverRefers()
    {
        const QString zero = QStringLiteral("-0.00");
        setResult(zero, zero, zero, zero);
        setLocalNow(QDateTime(QDate(2024, 6, 1), QTime(12, 0)));
        for (int criterion : {referral::Matta, referral::Arnold, referral::Arthur2}) {
            data().m_nReferralCriterion = criterion;
            for (const QDate &birthday : {QDate(2024, 5, 1), QDate(2023, 9, 1), QDate(2021, 6, 1), QDate(2016, 6, 1)}) {
                data().m_dateBirthday = birthday;
                QCOMPARE(data().calculateReferral(), referral::kPass);
            }
        }
    }

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
        QTest::newRow("99 unknown") << 99 << referral::kPass << referral::kPass;
    }

    void settingPicksTheCriterion()
    {
        QFETCH(int, setting);
        QFETCH(int, atMattaBound);
        QFETCH(int, atArnoldBound);
        data().m_nReferralCriterion = setting;
        data().m_dateBirthday = QDate(2020, 3, 10);
        setLocalNow(QDateTime(QDate(2024, 3, 10), QTime(9, 0)));
        QCOMPARE(data().getMonthofAge(), 48);
        setResult(QStringLiteral("+1.25"), QStringLiteral("+1.25"));
        QCOMPARE(data().calculateReferral(), atMattaBound);
        setResult(QStringLiteral("+2.50"), QStringLiteral("+2.50"));
        QCOMPARE(data().calculateReferral(), atArnoldBound);
    }

    // --- age in months ---

    void ageRoundsByDayOfMonth_data()
    {
        QTest::addColumn<QDate>("birthday");
        QTest::addColumn<QDate>("today");
        QTest::addColumn<int>("months");
        QTest::newRow("16 days short") << QDate(2020, 5, 20) << QDate(2022, 5, 4) << 23;
        QTest::newRow("15 days short") << QDate(2020, 5, 19) << QDate(2022, 5, 4) << 23;
        QTest::newRow("14 days short") << QDate(2020, 5, 20) << QDate(2022, 5, 6) << 24;
        QTest::newRow("on the day") << QDate(2020, 5, 20) << QDate(2022, 5, 20) << 24;
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
        data().m_dateBirthday = birthday;
        setLocalNow(QDateTime(today, QTime(12, 0)));
        QCOMPARE(data().getMonthofAge(), months);
    }

    void ageFollowsTheLocalDateOfTheDevice()
    {
        // 20:00 UTC on the 3rd is already the 4th at +8: 14 days short of the
        // 18th rounds up, 15 would not.
        data().m_dateBirthday = QDate(2020, 1, 18);
        data().m_strTimeZone = QStringLiteral("8");
        m_nowMs = QDateTime(QDate(2022, 1, 3), QTime(20, 0), Qt::UTC).toMSecsSinceEpoch();
        QCOMPARE(data().getMonthofAge(), 24);
        data().m_strTimeZone = QStringLiteral("0");
        QCOMPARE(data().getMonthofAge(), 23);
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

    void mattaChangesBandAt37Months()
    {
        // -1.00 refers from the third band on, not in the second.
        setResult(QStringLiteral("-1.00"), QStringLiteral("-1.00"));
        data().m_dateBirthday = QDate(2021, 1, 10);
        setLocalNow(QDateTime(QDate(2024, 1, 10), QTime(9, 0)));
        QCOMPARE(data().getMonthofAge(), 36);
        QCOMPARE(data().calculateMatta(), referral::kPass);
        setLocalNow(QDateTime(QDate(2024, 2, 10), QTime(9, 0)));
        QCOMPARE(data().getMonthofAge(), 37);
        QCOMPARE(data().calculateMatta(), referral::kRefer);
    }

    // --- the settings page ---

    void pageOpensOnTheCriterionInForce_data()
    {
        QTest::addColumn<int>("setting");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("page");
        QTest::newRow("Matta") << 1 << "buttonMatta"
                               << "pageMatta";
        QTest::newRow("Arnold") << 0 << "buttonArnold"
                                << "pageArnold";
        QTest::newRow("Arthur2") << 2 << "buttonArthur2"
                                 << "pageArthur2";
        QTest::newRow("unknown") << 7 << "buttonArthur2"
                                 << "pageArthur2";
    }

    void pageOpensOnTheCriterionInForce()
    {
        QFETCH(int, setting);
        QFETCH(QString, button);
        QFETCH(QString, page);
        data().m_nReferralCriterion = setting;
        auto window = openReferralPage();
        QVERIFY(window->findChild<QPushButton *>(button)->isChecked());
        int checked = 0;
        for (const char *name : {"buttonMatta", "buttonArthur2", "buttonArnold"})
            checked += window->findChild<QPushButton *>(QLatin1String(name))->isChecked() ? 1 : 0;
        QCOMPARE(checked, 1);
        QCOMPARE(
            window->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetReferral"))->currentWidget()->objectName(),
            page);
        // Opening the page chooses nothing.
        QCOMPARE(criterionOnDisk(), QStringLiteral("0"));
    }

    void choosingSavesAtOnceAndShowsTheTexts_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("setting");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("Matta") << "buttonMatta" << 1 << kMattaTexts;
        QTest::newRow("Arthur2") << "buttonArthur2" << 2 << kArthur2Texts;
        QTest::newRow("Arnold") << "buttonArnold" << 0 << kArnoldTexts;
    }

    void choosingSavesAtOnceAndShowsTheTexts()
    {
        QFETCH(QString, button);
        QFETCH(int, setting);
        QFETCH(QStringList, texts);
        // Start from another criterion, in memory and on disk.
        const int before = setting == 1 ? 2 : 1;
        data().m_nReferralCriterion = before;
        CamCfg &cfg = *data().m_pCamCfg;
        cfg.setValue(CamCfg::ReferralCriterion, QString::number(before));
        cfg.dogenCurrentCFG();
        QCOMPARE(cfg.saveCFG2File(), QStringLiteral("1"));
        auto window = openReferralPage();
        click(*window, button.toLatin1().constData());
        QCOMPARE(data().m_nReferralCriterion, setting);
        QCOMPARE(criterionOnDisk(), QString::number(setting));
        QVERIFY(window->findChild<QPushButton *>(button)->isChecked());
        QCOMPARE(shownTexts(*window), texts);

        window.reset();
        GData restarted(m_cmd.get());
        restarted.Init(nullptr);
        QCOMPARE(restarted.m_nReferralCriterion, setting);
    }

    void longestLinesFitTheirPage()
    {
        auto window = openReferralPage();
        for (const char *name : {"buttonMatta", "buttonArthur2", "buttonArnold"}) {
            click(*window, name);
            // Layouts of a page just shown settle on the next event loop pass.
            QCoreApplication::processEvents();
            QWidget *page =
                window->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetReferral"))->currentWidget();
            const QList<QLabel *> labels = page->findChildren<QLabel *>();
            for (const QLabel *label : labels) {
                // Wider than its label, a line would wrap onto a second one.
                const int width = label->fontMetrics().horizontalAdvance(label->text());
                QVERIFY2(width <= label->contentsRect().width(), qPrintable(label->text()));
                QVERIFY2(label->geometry().bottom() < page->height(), qPrintable(label->text()));
            }
        }
    }
};

QTEST_MAIN(TestReferral)
#include "tst_referral.moc"
