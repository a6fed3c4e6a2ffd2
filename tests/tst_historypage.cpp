// SPDX-License-Identifier: GPL-2.0-or-later
// The history page: child keys, search, ticks, deletion, the HTML export, one child's tests, and the e-mail page.
#include "camcfg.h"
#include "emailaddress.h"
#include "historysearch.h"
#include "keypaddlg.h"
#include "msgdialog.h"
#include "platform.h"
#include "uitestsupport.h"

#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>

#include <functional>

namespace {

// Amy's three tests (one without its last four values), Bob's one, and lines
// of other shapes that deletion must leave exactly as they are.
const char kHistory[] = "Amy,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n"
                        "Bob,Male,2018-11-30|2024-05-17 10:50,+1.00,-0.25,90,+1.25,-0.50,180,58,Refer\n"
                        "no bar and no commas\n"
                        "Amy,Female,2019-03-02|2024-06-01 09:00,-0.25,-0.50,80,+0.50\n"
                        "\n"
                        "Amy,Female,2019-03-0|2024-06-01 09:30,+0.00,+0.00,0,+0.00,+0.00,0,0,Pass\n"
                        "Bob,Male|broken\n"
                        "Amy,Female,2019-03-02|2024-07-01 11:15,-0.75,-1.00,88,+0.00,-0.25,10,61,\n";
const QString kAmy = QStringLiteral("Amy,Female,2019-03-02");
const QString kBob = QStringLiteral("Bob,Male,2018-11-30");

bool showsIcon(const QIcon &icon, const char *resource)
{
    const QImage expected = QImage(QLatin1String(resource)).convertToFormat(QImage::Format_ARGB32);
    return !expected.isNull() && !icon.isNull() &&
           icon.pixmap(expected.size()).toImage().convertToFormat(QImage::Format_ARGB32) == expected;
}

// One row of the export, its cells given as one ","-separated text.
QString htmlRow(const QString &cells)
{
    return QStringLiteral("<tr><td>") + cells.split(QLatin1Char(',')).join(QLatin1String("</td><td>")) +
           QStringLiteral("</td></tr>");
}

} // namespace

class TestHistoryPage : public QObject, private WindowFixture
{
    Q_OBJECT

private:
    QString historyFile() const { return m_device->appDir() + QStringLiteral("/CAMCFG/result.txt"); }
    QString history() const { return QString::fromUtf8(TestDevice::readFile(historyFile())); }
    QString savedSetting(int position) const
    {
        return QString::fromUtf8(TestDevice::readFile(m_device->configFile())).split(QLatin1Char('|')).value(position);
    }
    QTableView *list() const { return widget<QTableView>("tableViewSearchResult"); }
    QStandardItemModel *rows() const { return qobject_cast<QStandardItemModel *>(list()->model()); }
    // The texts of a table's rows, from the given column on.
    static QStringList tableRows(const QAbstractItemModel *model, int first, QChar separator)
    {
        QStringList shown;
        for (int row = 0; row < model->rowCount(); ++row) {
            QStringList cells;
            for (int column = first; column < model->columnCount(); ++column)
                cells << model->index(row, column).data().toString();
            shown << cells.join(separator);
        }
        return shown;
    }
    // "name/sex/birthday" of each child shown, and each test of the detail page.
    QStringList shownRows() const { return tableRows(rows(), 1, QLatin1Char('/')); }
    QStringList detailRows() const
    {
        return tableRows(widget<QTableView>("tableViewUserDetail")->model(), 0, QLatin1Char(' '));
    }
    QString noMenuPage() const { return widget<QStackedWidget>("stackedWidgetNoMenu")->currentWidget()->objectName(); }
    bool ticked(int row) const { return showsIcon(rows()->item(row, 0)->icon(), ":/pic/checkon.jpg"); }

    void openFromTheMenuBar(const char *button)
    {
        widget<QStackedWidget>("stackedWidgetBase")->setCurrentIndex(MainDialog::BasePageMenu);
        widget<QStackedWidget>("stackedWidgetMain")->setCurrentIndex(0);
        click(button);
    }
    // Opens the page over `text` as the history file; without it, over the file as it is.
    void openHistory(const char *text = nullptr)
    {
        if (text)
            m_device->writeFile(QStringLiteral("app/CAMCFG/result.txt"), text);
        openFromTheMenuBar("buttonHistory");
        QCOMPARE(noMenuPage(), QStringLiteral("pageHistory"));
    }
    void openEmailSettings()
    {
        openFromTheMenuBar("buttonSetup");
        click("buttonEmailSetting");
        QCOMPARE(noMenuPage(), QStringLiteral("pageEmail"));
    }
    void tapCell(int row, int column)
    {
        const QModelIndex index = rows()->index(row, column);
        list()->scrollTo(index);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(index).center());
    }

    // Runs `action`, answering its dialogs: a message box with its only
    // button or, for a question, with `answer`; a keypad by typing with
    // `type`. Returns what each box showed ("keypad" for a keypad).
    QStringList answering(const std::function<void()> &action, const char *answer = "buttonLeft1",
                          const std::function<void(KeypadDlg *)> &type = {})
    {
        QStringList seen;
        ModalResponder responder([&](QWidget *modal) {
            if (auto *box = qobject_cast<MsgDialog *>(modal)) {
                seen << messageText(box);
                const bool notice = box->findChild<QPushButton *>(QStringLiteral("buttonMiddle1"))->isVisibleTo(box);
                pressButton(box, notice ? "buttonMiddle1" : answer);
            } else if (auto *keypad = qobject_cast<KeypadDlg *>(modal)) {
                seen << QStringLiteral("keypad");
                if (type)
                    type(keypad);
                pressButton(keypad, "buttonCloseKeypad");
            }
            // The progress dialog closes by itself once its operation is done.
        });
        action();
        return seen;
    }
    QStringList clicking(const char *name, const char *answer = "buttonLeft1")
    {
        return answering([&] { click(name); }, answer);
    }

private slots:
    void init()
    {
        setUp();
        // Where nothing listens: a mail is refused at once, never looked up by name.
        Platform &platform = Platform::instance();
        platform.mailServer = QStringLiteral("127.0.0.26");
        platform.mailPort = 9;
        platform.mailSecurity = QStringLiteral("none");
        openWindow();
    }

    void cleanup() { tearDown(); }

    // --- the history text ---

    void keysAreListedOnceInCodeUnitOrderAndSearchedCaseSensitively()
    {
        const QString text =
            QStringLiteral("Sam,Male,2019-01-01|t1\nAMY,Female,2018-02-02|t2\n\nSam,Male,2019-01-01|t3\n"
                           "\u00c9mile,Male,2016-04-04|t4\nSamantha,Female,2020-05-05|t5\njust text");
        // Upper case before lower case before accented letters; a line
        // without "|" is a key of its own.
        QCOMPARE(historysearch::childKeys(text, QString()),
                 QStringList({"AMY,Female,2018-02-02", "Sam,Male,2019-01-01", "Samantha,Female,2020-05-05", "just text",
                              "\u00c9mile,Male,2016-04-04"}));
        // The whole key is searched, the tests are not.
        QCOMPARE(historysearch::childKeys(text, QStringLiteral("e,2020")), QStringList({"Samantha,Female,2020-05-05"}));
        QVERIFY(historysearch::childKeys(text, QStringLiteral("t1")).isEmpty());
    }

    void deletionTakesEveryLineStartingWithAKey()
    {
        // Keys of several lengths, one a prefix of another, lines shorter
        // than a key, and empty lines, which go too.
        const QString text = QStringLiteral("Amy,F|1\nAm\n\nBob|2\nAmyx|3\nB\n\u00c9mile|4\nZed|5");
        QCOMPARE(historysearch::withoutKeys(text, {QStringLiteral("\u00c9"), QStringLiteral("Amyx"),
                                                   QStringLiteral("Bo"), QStringLiteral("Amy")}),
                 QStringLiteral("Am\nB\nZed|5\n"));
        QCOMPARE(historysearch::withoutKeys(text, {QStringLiteral("Amyx")}),
                 QStringLiteral("Amy,F|1\nAm\nBob|2\nB\n\u00c9mile|4\nZed|5\n"));
        QCOMPARE(historysearch::withoutKeys(text, {QString()}), QString());
    }

    void theExportFillsMissingValuesAndSkipsOtherShapes()
    {
        const QString text =
            QString::fromLatin1(kHistory) + QStringLiteral("Amy,Female,2019-03-02|one|two\n"
                                                           "Amy,Female,2019-03-02,x|2024-08-01 08:00\n"
                                                           "Amy,Female,2019-03-02|a,b,c,d,e,f,g,h,i,j\n"
                                                           "Bob,Male,2018-11-30|<b>&,1\n");
        int count = -1;
        const QString html = historysearch::exportHtml(text, {kAmy, kBob}, &count);
        const QString header = QStringLiteral("<table border=\"1\">") +
                               htmlRow(QStringLiteral("Name,Sex,Birthday,Time,OD SPH,OD CYL,OD AXIS,OS SPH,OS CYL,"
                                                      "OS AXIS,PD,Screening results"));
        QCOMPARE(html, header +
                           htmlRow(kAmy + QStringLiteral(",2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass")) +
                           htmlRow(kBob + QStringLiteral(",2024-05-17 10:50,+1.00,-0.25,90,+1.25,-0.50,180,58,Refer")) +
                           htmlRow(kAmy + QStringLiteral(",2024-06-01 09:00,-0.25,-0.50,80,+0.50,N/A,N/A,N/A,N/A")) +
                           htmlRow(kAmy + QStringLiteral(",2024-07-01 11:15,-0.75,-1.00,88,+0.00,-0.25,10,61,")) +
                           htmlRow(kBob + QStringLiteral(",&lt;b&gt;&amp;,1,N/A,N/A,N/A,N/A,N/A,N/A,N/A")) +
                           QStringLiteral("</table>"));
        QCOMPARE(count, 5);
        QCOMPARE(historysearch::exportHtml(text, {}, &count), header + QStringLiteral("</table>"));
        QCOMPARE(count, 0);
    }

    void reportFileNamesKeepLettersDigitsAndTheTime()
    {
        const QDateTime time(QDate(2024, 5, 17), QTime(9, 4, 7));
        QCOMPARE(historysearch::reportFileName(QStringLiteral("Amy O'Neil-Smith"), time),
                 QStringLiteral("Amy_O_Neil_Smith_20240517090407.html"));
        QCOMPARE(historysearch::reportFileName(QStringLiteral("\u738b\u5c0f\u660e/../x"), time),
                 QStringLiteral("_______x_20240517090407.html"));
        QCOMPARE(historysearch::reportFileName(QString(200, QLatin1Char('n')), time).size(), 64 + 20);
    }

    void emailAddressShapes()
    {
        QVERIFY(emailaddress::isWellFormed(QStringLiteral("school.nurse+eyes@mail.clinic.example.co")));
        // The settings separator or a line end would break the settings file.
        for (const QString bad :
             {"", emailaddress::kNoAddress, "nurse@clinic", "school nurse@clinic.org", "school..nurse@clinic.org",
              "nurse@-clinic.org", "a|b@clinic.org", "nurse@clinic.org\n"})
            QVERIFY2(!emailaddress::isWellFormed(bad), qPrintable(bad));
        QVERIFY(!emailaddress::isWellFormed(QString(65, QLatin1Char('n')) + QStringLiteral("@clinic.org")));
    }

    // --- the history page ---

    void threeTestsOfOneChildAreOneRowShownTogetherAndDeletedTogether()
    {
        openHistory(kHistory);
        QCOMPARE(shownRows(), QStringList({"Amy/Female/2019-03-0", "Amy/Female/2019-03-02", "Bob/Male/",
                                           "Bob/Male/2018-11-30", "no bar and no commas//"}));
        // A second tap takes the tick away again.
        tapCell(1, 0);
        tapCell(2, 0);
        tapCell(2, 0);
        QVERIFY(ticked(1) && !ticked(2));

        // A tap beside the tick shows the child's tests in the file's order.
        tapCell(1, 2);
        QCOMPARE(noMenuPage(), QStringLiteral("pageUserDetail"));
        QCOMPARE(widget<QLabel>("labelUserDetailTitle")->text(), QStringLiteral("Amy"));
        QCOMPARE(detailRows(), QStringList({"2024-05-17 10:42 -0.50 -0.75 85 +0.25 -0.00 5 62 Pass",
                                            "2024-06-01 09:00 -0.25 -0.50 80 +0.50 N/A N/A N/A N/A",
                                            "2024-07-01 11:15 -0.75 -1.00 88 +0.00 -0.25 10 61 "}));
        click("buttonUserDetailReturn");
        QVERIFY(ticked(1));
        // A line without "|" lacks every value.
        tapCell(4, 1);
        QCOMPARE(detailRows(), QStringList({"N/A N/A N/A N/A N/A N/A N/A N/A N/A"}));
        click("buttonUserDetailReturn");

        QCOMPARE(clicking("buttonHistoryDelete"), QStringList({"Delete Records"}));
        // The shorter birthday is another key; the malformed lines stay as they were.
        QCOMPARE(history(),
                 QStringLiteral("Bob,Male,2018-11-30|2024-05-17 10:50,+1.00,-0.25,90,+1.25,-0.50,180,58,Refer\n"
                                "no bar and no commas\n"
                                "Amy,Female,2019-03-0|2024-06-01 09:30,+0.00,+0.00,0,+0.00,+0.00,0,0,Pass\n"
                                "Bob,Male|broken\n"));
        QCOMPARE(shownRows(),
                 QStringList({"Amy/Female/2019-03-0", "Bob/Male/", "Bob/Male/2018-11-30", "no bar and no commas//"}));
        QVERIFY(!ticked(0));
    }

    void theSearchFieldTypesOnTheKeypadUntilThePageIsReopened()
    {
        openHistory(kHistory);
        const auto typeM = [](KeypadDlg *keypad) {
            pressButton(keypad, "buttonM");
        };
        QCOMPARE(answering([&] { QTest::mouseClick(widget<QLineEdit>("editSearch"), Qt::LeftButton); }, "", typeM),
                 QStringList({"keypad"}));
        // Bob's "Male" has no small "m".
        QCOMPARE(shownRows(), QStringList({"Amy/Female/2019-03-0", "Amy/Female/2019-03-02", "no bar and no commas//"}));
        openHistory();
        QVERIFY(widget<QLineEdit>("editSearch")->text().isEmpty());
        QCOMPARE(rows()->rowCount(), 5);
    }

    void onlyTickedChildrenAreDeletedOrExportedToTheMailer()
    {
        openHistory(kHistory);
        QCOMPARE(clicking("buttonHistoryDelete"), QStringList({"No Record Selected"}));
        QCOMPARE(clicking("buttonHistoryExport"), QStringList({"No Record Selected"}));
        for (const bool on : {true, false}) {
            click("buttonSelectAll");
            QCOMPARE(showsIcon(widget<QPushButton>("buttonSelectAll")->icon(), ":/pic/checkon.jpg"), on);
            for (int row = 0; row < rows()->rowCount(); ++row)
                QCOMPARE(ticked(row), on);
        }
        // Amy's row and Bob's well-formed one; a "No" to deleting them leaves the file alone.
        tapCell(1, 0);
        tapCell(3, 0);
        QCOMPARE(clicking("buttonHistoryDelete", "buttonRight1"), QStringList({"Delete Records"}));
        QCOMPARE(history(), QString::fromLatin1(kHistory));

        // A report that cannot be written is not mailed.
        const QString recording = Platform::instance().recordingFile;
        Platform::instance().recordingFile = m_device->root() + QStringLiteral("/missing/pupil_video.avi");
        QCOMPARE(clicking("buttonHistoryExport"), QStringList({"Open File Error"}));
        QVERIFY(m_data->m_strReportFile.isEmpty());

        // Beside the recording, named after the first child ticked.
        Platform::instance().recordingFile = recording;
        const QStringList seen = clicking("buttonHistoryExport");
        const QFileInfo report(m_data->m_strReportFile);
        QCOMPARE(report.absolutePath(), QFileInfo(recording).absolutePath());
        QVERIFY2(report.fileName().startsWith(QLatin1String("Amy_")), qPrintable(report.fileName()));
        QCOMPARE(QString::fromUtf8(TestDevice::readFile(report.filePath())),
                 historysearch::exportHtml(QString::fromLatin1(kHistory), {kAmy, kBob}));
        // Whatever the mailer answered is what the operator reads.
        const QString answer = m_data->smtpSendReport();
        QCOMPARE(seen, QStringList({answer.isEmpty() ? QStringLiteral("Success") : answer}));
        QCOMPARE(history(), QString::fromLatin1(kHistory));

        // Without a history file the list is empty, and so is the selection.
        QFile::remove(historyFile());
        openHistory();
        QCOMPARE(rows()->rowCount(), 0);
        click("buttonSelectAll");
        QCOMPARE(clicking("buttonHistoryDelete"), QStringList({"No Record Selected"}));
    }

    void aCommaInANameSplitsItsRecordAsTheRulesSay()
    {
        openHistory("Smith, John,Male,2019-01-01|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n"
                    "Smith, John,Male,2020-02-02|2024-05-18 11:00,+1.00,-0.25,90,+1.25,-0.50,180,58,\n"
                    "Smith,Male,2018-05-05|2024-05-19 12:00,+0.00,+0.00,0,+0.00,+0.00,0,0,Pass\n");
        // The name's comma shifts sex and birthday along: two children show
        // alike, since a row has room for three fields only.
        QCOMPARE(shownRows(), QStringList({"Smith/ John/Male", "Smith/ John/Male", "Smith/Male/2018-05-05"}));

        // The export wants three fields before "|", so the record is not sent.
        tapCell(0, 0);
        LogCapture log;
        clicking("buttonHistoryExport");
        QVERIFY(log.contains(QStringLiteral("listAllRecords: 0")));

        // The key rebuilt from the row, "Smith, John,Male", starts both lines.
        QCOMPARE(clicking("buttonHistoryDelete"), QStringList({"Delete Records"}));
        QCOMPARE(history(),
                 QStringLiteral("Smith,Male,2018-05-05|2024-05-19 12:00,+0.00,+0.00,0,+0.00,+0.00,0,0,Pass\n"));
    }

    // --- the e-mail reporting page ---

    void theEmailPageSavesAtOnceAndATestMailShowsTheMailersAnswer()
    {
        openEmailSettings();
        auto *toggle = widget<QPushButton>("buttonEmailReporting");
        for (const char *state : {"1", "0"}) {
            click("buttonEmailReporting");
            QCOMPARE(savedSetting(19), QLatin1String(state));
            QCOMPARE(toggle->text(), QLatin1String(*state == '1' ? "On" : "Off"));
        }
        QCOMPARE(clicking("buttonEmailTest"), QStringList({"Please Input Email"}));

        auto *address = widget<QLineEdit>("editEmailAddress");
        QCOMPARE(address->text(), QStringLiteral("Please Input Email"));
        const auto typeAddress = [&](const QString &text) {
            return answering([&] { QTest::mouseClick(address, Qt::LeftButton); }, "buttonLeft1",
                             [&](KeypadDlg *keypad) {
                                 // Typed key by key would take a key per character; the
                                 // keypad writes into the field just the same.
                                 address->setText(text);
                                 pressButton(keypad, "buttonSpace");
                             });
        };
        QCOMPARE(typeAddress(QStringLiteral("nurse@clinic")),
                 QStringList({"keypad", "Invalid E-mail Address/nurse@clinic"}));
        QCOMPARE(savedSetting(20), QStringLiteral("Please Input Email"));
        QCOMPARE(address->text(), QStringLiteral("Please Input Email"));
        QCOMPARE(typeAddress(QStringLiteral("school.nurse@clinic.org")), QStringList({"keypad"}));
        QCOMPARE(savedSetting(20), QStringLiteral("school.nurse@clinic.org"));
        QCOMPARE(address->text(), QStringLiteral("school.nurse@clinic.org"));

        // Nothing listens where the mail would go: the page shows the
        // mailer's own words for that.
        const QStringList seen = clicking("buttonEmailTest");
        QVERIFY(!seen.value(0).isEmpty());
        QCOMPARE(seen, QStringList({m_data->smtpSendTestMail()}));

        // A bad address later keeps the good one; an emptied field means no address.
        QCOMPARE(typeAddress(QStringLiteral("school nurse")).size(), 2);
        QCOMPARE(savedSetting(20), QStringLiteral("school.nurse@clinic.org"));
        QCOMPARE(typeAddress(QString()), QStringList({"keypad"}));
        QCOMPARE(savedSetting(20), QStringLiteral("Please Input Email"));
    }
};

QTEST_MAIN(TestHistoryPage)
#include "tst_historypage.moc"
