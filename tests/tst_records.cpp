// SPDX-License-Identifier: GPL-2.0-or-later
// Clinic records: the pupil photo of a test, and the history export read back by the tools it is meant for.
#include "camcfg.h"
#include "csvexport.h"
#include "fhirbundle.h"
#include "gdata.h"
#include "historysearch.h"
#include "parentletter.h"
#include "pupilphoto.h"
#include "testsupport.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <vector>

namespace {

// A grey frame of the camera's size with a bright disc of radius 12 at each point.
QImage frameWithPupils(const QVector<QPoint> &pupils, int noise = 0)
{
    QImage frame(GData::kCameraWidth, GData::kCameraHeight, QImage::Format_Grayscale8);
    frame.fill(90);
    if (noise > 0) {
        for (int y = 0; y < frame.height(); ++y) {
            uchar *line = frame.scanLine(y);
            for (int x = 0; x < frame.width(); ++x)
                line[x] = static_cast<uchar>(90 + ((x * 7 + y * 13) % noise));
        }
    }
    QPainter painter(&frame);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(240, 240, 240));
    for (const QPoint &pupil : pupils)
        painter.drawEllipse(pupil, 12, 12);
    return frame;
}

QByteArray run(const QString &program, const QStringList &arguments, int *exitCode = nullptr)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return QByteArray("timed out");
    if (exitCode)
        *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return process.readAll();
}

// The code of a FHIR concept's first coding.
QString firstCode(const QJsonValue &concept)
{
    return concept[QStringLiteral("coding")][0][QStringLiteral("code")].toString();
}

const char kHistory[] = "Amy,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n"
                        "Bob,Male,2017-07-08|2024-05-17 11:00,+2.00,-1.50,170,+1.75,-1.25,10,0,Refer\n"
                        "Amy,Female,2019-03-02|2024-06-01 09:05,-0.75,N/A,90,+0.25,-0.25,0,61,\n";

} // namespace

class TestRecords : public QObject, private DeviceFixture
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        if (m_data)
            tearDown();
    }

    void eyeRegionHoldsBothPupils_data()
    {
        QTest::addColumn<QVector<QPoint>>("pupils");
        QTest::addColumn<bool>("found");
        QTest::newRow("aimed") << QVector<QPoint>{{800, 520}, {1120, 530}} << true;
        QTest::newRow("off to the top left") << QVector<QPoint>{{150, 80}, {420, 70}} << true;
        QTest::newRow("near: wide apart") << QVector<QPoint>{{650, 600}, {1250, 620}} << true;
        QTest::newRow("one pupil") << QVector<QPoint>{{800, 520}} << false;
        QTest::newRow("one above the other") << QVector<QPoint>{{900, 300}, {920, 700}} << false;
        QTest::newRow("no pupil") << QVector<QPoint>{} << false;
    }

    void eyeRegionHoldsBothPupils()
    {
        QFETCH(QVector<QPoint>, pupils);
        QFETCH(bool, found);
        const QImage frame = frameWithPupils(pupils);
        const QRect region = pupilphoto::eyeRegion(frame);
        QVERIFY(QRect(QPoint(0, 0), frame.size()).contains(region));
        QCOMPARE(region.width() * 3 / 8, region.height());
        if (found) {
            for (const QPoint &pupil : pupils)
                QVERIFY2(region.adjusted(12, 12, -12, -12).contains(pupil), qPrintable(QStringLiteral("%1,%2 outside")
                                                                                         .arg(pupil.x())
                                                                                         .arg(pupil.y())));
            // Cropped to the eyes, not the frame with them somewhere in it.
            QVERIFY(region.width() < frame.width() * 3 / 4);
        } else {
            QCOMPARE(region.center().x(), frame.width() / 2 - 1);
        }
        const QImage photo = pupilphoto::cropToEyes(frame);
        QVERIFY(photo.width() <= 640);
        const QByteArray jpeg = pupilphoto::encodeJpeg(photo);
        QVERIFY(jpeg.startsWith("\xFF\xD8") && jpeg.size() < 80 * 1024);
    }

    // The sharpest of a recording's flash frames becomes the photo, once.
    void pickerKeepsTheSharpestFrameOfTheRecording()
    {
        const QVector<QPoint> pupils{{800, 520}, {1120, 530}};
        const QImage blurred = frameWithPupils(pupils);
        const QImage sharp = frameWithPupils(pupils, 9);
        PupilPhotoPicker picker;
        QVERIFY(picker.take().isNull());
        for (const QImage *frame : {&blurred, &sharp, &blurred})
            picker.offer(frame->constBits(), frame->width(), frame->height());
        QCOMPARE(picker.take(), pupilphoto::cropToEyes(sharp));
        QVERIFY(picker.take().isNull());
        picker.offer(sharp.constBits(), sharp.width(), sharp.height());
        picker.reset();
        QVERIFY(picker.take().isNull());
    }

    // Read back by Python's csv module, as a spreadsheet program would split it.
    void csvReadsBackAsWritten_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("shown");
        QTest::newRow("comma") << QStringLiteral("Lee, Amy") << QStringLiteral("Lee, Amy");
        QTest::newRow("quotes") << QStringLiteral("Amy \"Mimi\" Lee") << QStringLiteral("Amy \"Mimi\" Lee");
        QTest::newRow("new line") << QStringLiteral("Amy\nLee") << QStringLiteral("Amy\nLee");
        QTest::newRow("Chinese") << QStringLiteral("王小明") << QStringLiteral("王小明");
        QTest::newRow("formula") << QStringLiteral("=HYPERLINK(\"http://x\")")
                                 << QStringLiteral("'=HYPERLINK(\"http://x\")");
        QTest::newRow("plus") << QStringLiteral("+cmd") << QStringLiteral("'+cmd");
        QTest::newRow("at") << QStringLiteral("@SUM(A1)") << QStringLiteral("'@SUM(A1)");
        QTest::newRow("minus word") << QStringLiteral("-2+3") << QStringLiteral("'-2+3");
        QTest::newRow("negative dioptre") << QStringLiteral("-0.50") << QStringLiteral("-0.50");
        QTest::newRow("positive dioptre") << QStringLiteral("+1.25") << QStringLiteral("+1.25");
        QTest::newRow("empty") << QString() << QString();
    }

    void csvReadsBackAsWritten()
    {
        QFETCH(QString, value);
        QFETCH(QString, shown);
        const QByteArray csv = csvexport::table({{QStringLiteral("Name"), QStringLiteral("Result")}, {value, QStringLiteral("Pass")}});
        QVERIFY(csv.startsWith("\xEF\xBB\xBF\"Name\",\"Result\"\r\n"));
        QVERIFY(csv.endsWith("\r\n"));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("table.csv"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(csv) == csv.size());
        file.close();
        const QByteArray json = run(QStringLiteral("python3"),
                                    {QStringLiteral("-c"),
                                     QStringLiteral("import csv, json, sys\n"
                                                    "with open(sys.argv[1], encoding='utf-8-sig', newline='') as f:\n"
                                                    "    print(json.dumps(list(csv.reader(f))))"),
                                     path});
        const QJsonArray rows = QJsonDocument::fromJson(json).array();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(1).toArray().at(0).toString(), shown);
        QCOMPARE(rows.at(1).toArray().at(1).toString(), QStringLiteral("Pass"));
    }

    // pdftotext finds the children and their values in the interface's language, one page each.
    void parentLettersReadBack_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("English") << QStringLiteral("en_US") << QStringLiteral("Amy Lee")
                                 << QStringList{QStringLiteral("Right eye (OD)"), QStringLiteral("Result: Refer"),
                                                QStringLiteral("not a diagnosis"), QStringLiteral("eye-care professional")};
        QTest::newRow("Chinese") << QStringLiteral("zh_CN") << QStringLiteral("王小明")
                                 << QStringList{QStringLiteral("右眼 (OD)"), QStringLiteral("结果：转诊"),
                                                QStringLiteral("不是诊断")};
    }

    void parentLettersReadBack()
    {
        QFETCH(QString, locale);
        QFETCH(QString, name);
        QFETCH(QStringList, words);
        QTranslator translator;
        QVERIFY(translator.load(QStringLiteral(":/i18n/app_%1.qm").arg(locale)));
        QCoreApplication::installTranslator(&translator);

        parentletter::Letter refer;
        refer.device = QStringLiteral("Orvella 0.0.1");
        refer.testTime = QStringLiteral("2024-05-17 10:42");
        refer.name = name;
        refer.birthday = QStringLiteral("2019-03-02");
        refer.odSphere = QStringLiteral("+2.75");
        refer.odCylinder = QStringLiteral("-1.50");
        refer.odAxis = QStringLiteral("175");
        refer.osSphere = QStringLiteral("+0.25");
        refer.osCylinder = QStringLiteral("-0.00");
        refer.osAxis = QStringLiteral("5");
        refer.pupilDistance = QStringLiteral("62");
        refer.result = QStringLiteral("Refer");
        refer.photo = pupilphoto::cropToEyes(frameWithPupils({{800, 520}, {1120, 530}}));
        parentletter::Letter pass = refer;
        pass.name = QStringLiteral("Bob");
        pass.result = QStringLiteral("Pass");
        pass.photo = QImage();

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("letters.pdf"));
        const bool written = parentletter::write(path, {refer, pass});
        QCoreApplication::removeTranslator(&translator);
        QVERIFY(written);

        QVERIFY(QString::fromUtf8(run(QStringLiteral("pdfinfo"), {path})).contains(QRegularExpression(QStringLiteral("Pages:\\s+2\\n"))));
        const QString text = QString::fromUtf8(run(QStringLiteral("pdftotext"), {path, QStringLiteral("-")}));
        const QStringList pages = text.split(QLatin1Char('\f'));
        QVERIFY2(pages.at(0).contains(name), qPrintable(text));
        for (const QString &value : {refer.odSphere, refer.odCylinder, refer.odAxis, refer.pupilDistance})
            QVERIFY2(pages.at(0).contains(value), qPrintable(value));
        for (const QString &word : words)
            QVERIFY2(pages.at(0).contains(word), qPrintable(word));
        QVERIFY(pages.at(1).contains(QStringLiteral("Bob")));
        QVERIFY(!pages.at(1).contains(words.at(1)));
    }

    // Valid against the FHIR R4 JSON schema, and every value of the records is found again.
    void bundleValidatesAndRoundTrips()
    {
        const QString history = QString::fromUtf8(kHistory);
        const QVector<historysearch::ExportedTest> tests = historysearch::exportedTests(
            history, {QStringLiteral("Amy,Female,2019-03-02"), QStringLiteral("Bob,Male,2017-07-08")});
        QCOMPARE(tests.size(), 3);
        const QByteArray json =
            fhirbundle::bundle(tests, {QStringLiteral("Orvella 0.0.1"), 19800, QDateTime::currentDateTimeUtc()});

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("bundle.json"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(json) == json.size());
        file.close();
        int exitCode = -1;
        const QByteArray verdict = run(QStringLiteral("node"), {QStringLiteral(ORVELLA_FHIR_VALIDATOR), path}, &exitCode);
        QVERIFY2(exitCode == 0, verdict.constData());

        const QJsonArray entries = QJsonDocument::fromJson(json).object().value(QStringLiteral("entry")).toArray();
        QHash<QString, QJsonObject> patients;
        QVector<QJsonObject> observations;
        for (const QJsonValue &entry : entries) {
            const QJsonObject resource = entry.toObject().value(QStringLiteral("resource")).toObject();
            if (resource.value(QStringLiteral("resourceType")) == QStringLiteral("Patient"))
                patients.insert(entry.toObject().value(QStringLiteral("fullUrl")).toString(), resource);
            else
                observations << resource;
        }
        QCOMPARE(patients.size(), 2);
        QCOMPARE(observations.size(), tests.size());
        const QStringList codes{QStringLiteral("od-sphere"), QStringLiteral("od-cylinder"), QStringLiteral("od-axis"),
                                QStringLiteral("os-sphere"), QStringLiteral("os-cylinder"), QStringLiteral("os-axis"),
                                QStringLiteral("pupil-distance")};
        for (int i = 0; i < tests.size(); ++i) {
            const historysearch::ExportedTest &test = tests.at(i);
            const QJsonObject &observation = observations.at(i);
            const QJsonObject patient =
                patients.value(observation.value(QStringLiteral("subject")).toObject().value(QStringLiteral("reference")).toString());
            QCOMPARE(patient.value(QStringLiteral("name")).toArray().at(0).toObject().value(QStringLiteral("text")).toString(),
                     test.name);
            QCOMPARE(patient.value(QStringLiteral("birthDate")).toString(), test.birthday);
            QCOMPARE(observation.value(QStringLiteral("effectiveDateTime")).toString(),
                     QString(test.values.at(0)).replace(QLatin1Char(' '), QLatin1Char('T')) + QStringLiteral(":00+05:30"));
            QCOMPARE(firstCode(observation.value(QStringLiteral("valueCodeableConcept"))), test.values.at(8).toLower());
            QHash<QString, QJsonObject> components;
            for (const QJsonValue &component : observation.value(QStringLiteral("component")).toArray()) {
                const QJsonObject part = component.toObject();
                components.insert(firstCode(part.value(QStringLiteral("code"))), part);
            }
            for (int value = 0; value < codes.size(); ++value) {
                const QString &recorded = test.values.at(value + 1);
                const QJsonObject part = components.value(codes.at(value));
                if (recorded == QLatin1String("N/A") || (value == 6 && recorded == QLatin1String("0"))) {
                    QVERIFY(!part.contains(QStringLiteral("valueQuantity")));
                    continue;
                }
                const QJsonObject quantity = part.value(QStringLiteral("valueQuantity")).toObject();
                QCOMPARE(quantity.value(QStringLiteral("value")).toDouble(), recorded.toDouble());
                QCOMPARE(quantity.value(QStringLiteral("code")).toString(),
                         value == 6 ? QStringLiteral("mm") : (value % 3 == 2 ? QStringLiteral("deg") : QStringLiteral("[diop]")));
            }
        }
    }

    // Saving keeps the recording's best frame beside the record, a second
    // test of the child in the same minute beside its own; deleting a
    // child's records takes their photos and no other; a test whose
    // recording gave no frame has no photo and still exports whole.
    void photosFollowTheirRecords()
    {
        setUp(false);
        freezeClock();
        startDevice();
        const QImage frame = frameWithPupils({{800, 520}, {1120, 530}}, 9);
        const auto save = [&](const QString &name, const char *result, bool recorded) {
            m_data->m_strName = name;
            m_data->m_dateBirthday = QDate(2019, 3, 2);
            m_data->m_strResult = QString::fromLatin1(result);
            m_data->m_pupilPhoto.reset();
            if (recorded)
                m_data->m_pupilPhoto.offer(frame.constBits(), frame.width(), frame.height());
            m_data->saveTestResult();
            const QString line = historyrecord::line(m_data->currentTest());
            return m_data->photoPath(historysearch::childKey(line), historysearch::testValues(line));
        };
        const QString amy = save(QStringLiteral("Amy"), "Refer", true);
        advance(20);
        const QString amyAgain = save(QStringLiteral("Amy"), "Pass", true);
        advance(60);
        const QString chen = save(QStringLiteral("王小明"), "Refer", true);
        advance(60);
        const QString lin = save(QStringLiteral("林小红"), "Refer", false);
        QVERIFY(QImage(amy).size() == pupilphoto::cropToEyes(frame).size());
        QVERIFY(amy != amyAgain && QFile::exists(amyAgain) && QFile::exists(chen));
        QVERIFY(!QFile::exists(lin));

        const QString history = m_data->readTestResult();
        const QStringList keys = historysearch::childKeys(history, QString());
        m_data->m_pCamCfg->setValue(CamCfg::ReportAttachments, QStringLiteral("html,csv,pdf,fhir"));
        QVERIFY(m_data->prepareHistoryExport({keys.filter(QStringLiteral("林小红")).value(0)}));
        QCOMPARE(m_data->m_strReportExtras.size(), 3);
        for (const QString &file : m_data->m_strReportExtras)
            QVERIFY(QFileInfo(file).size() > 0);

        m_data->deletePhotos(history, keys.filter(QStringLiteral("Amy")));
        QVERIFY(!QFile::exists(amy) && !QFile::exists(amyAgain));
        QVERIFY(QFile::exists(chen));
    }
};

int main(int argc, char **argv)
{
    // The letters need fonts, hence a GUI application, without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    TestRecords test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_records.moc"
