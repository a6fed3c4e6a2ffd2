// SPDX-License-Identifier: GPL-2.0-or-later
// The tester's window beside the simulated device: the scene in front of it, its servers, what it measured.
#include "controlpanel.h"

#include "analysisserver.h"
#include "cloudprintserver.h"
#include "gdata.h"
#include "simulatedcamera.h"
#include "simulatedworld.h"
#include "updateserver.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextCodec>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace {

SimulatedWorld &world()
{
    return SimulatedWorld::instance();
}

const char *const kModes[] = {"idle", "aiming", "recording", "recording finished"};

// RFC 2047 words ("=?UTF-8?B?...?=") back to text; a name in any script
// reaches the subject only in that form.
QString decodeHeaderText(const QByteArray &raw)
{
    static const QRegularExpression word(QStringLiteral("=\\?([^?]+)\\?([BbQq])\\?([^?]*)\\?=(?:\\s+(?==\\?))?"));
    const QString text = QString::fromLatin1(raw);
    QString decoded;
    int from = 0;
    for (auto match = word.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        decoded += text.mid(from, found.capturedStart() - from);
        from = found.capturedEnd();
        QByteArray bytes = found.captured(3).toLatin1();
        if (found.captured(2).compare(QLatin1String("B"), Qt::CaseInsensitive) == 0) {
            bytes = QByteArray::fromBase64(bytes);
        } else {
            bytes.replace('_', ' ');
            bytes = QByteArray::fromPercentEncoding(bytes, '=');
        }
        QTextCodec *codec = QTextCodec::codecForName(found.captured(1).toLatin1());
        decoded += codec ? codec->toUnicode(bytes) : QString::fromUtf8(bytes);
    }
    return decoded + text.mid(from);
}

// The Subject header of a stored message, unfolded and decoded.
QString subjectOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QByteArray subject;
    bool inSubject = false;
    for (int lines = 0; lines < 500 && !file.atEnd(); ++lines) {
        const QByteArray line = file.readLine().replace("\r", "").replace("\n", "");
        if (line.isEmpty())
            break;
        if (inSubject && (line.startsWith(' ') || line.startsWith('\t'))) {
            subject += line;
            continue;
        }
        inSubject = line.toLower().startsWith("subject:");
        if (inSubject)
            subject = line.mid(8).trimmed();
    }
    return decodeHeaderText(subject.simplified());
}

} // namespace

ControlPanel::ControlPanel(AnalysisServer *analysisServer, CloudPrintServer *cloudPrintServer,
                           UpdateServer *updateServer, QWidget *parent)
    : QWidget(parent)
    , m_analysisServer(analysisServer)
    , m_cloudPrintServer(cloudPrintServer)
    , m_updateServer(updateServer)
{
    setWindowTitle(QStringLiteral("Orvella simulator"));
    // A desktop tool: the device's large touch-screen font does not suit it.
    QFont desktop = font();
    desktop.setPixelSize(14);
    setFont(desktop);
    setObjectName(QStringLiteral("ControlPanel"));
    // The scene and what the device made of it stay in view on the left;
    // the servers and the printers share the right column as tabs, so that
    // the panel fits beside the 1024-pixel device on a 1920-pixel screen.
    auto *columns = new QHBoxLayout(this);
    auto *layout = new QVBoxLayout;
    columns->addLayout(layout);
    auto *tabs = new QTabWidget(this);
    columns->addWidget(tabs);
    auto *serversPage = new QWidget(tabs);
    auto *servers = new QVBoxLayout(serversPage);
    tabs->addTab(serversPage, QStringLiteral("Servers and faults"));

    auto *scene = new QGroupBox(QStringLiteral("In front of the device"), this);
    auto *sceneLayout = new QFormLayout(scene);
    layout->addWidget(scene);
    m_distance = addSlider(sceneLayout, QStringLiteral("Child distance"), 500, 2000, world().childDistanceMm,
                           QStringLiteral("mm"), [](int v) { world().childDistanceMm = v; });
    m_pitch = addSlider(sceneLayout, QStringLiteral("Device pitch"), -30, 30, world().pitchDegrees, QStringLiteral("°"),
                        [](int v) { world().pitchDegrees = v; });
    m_ambient = addSlider(sceneLayout, QStringLiteral("Room light"), 0, 100, world().ambientLight, QString(),
                          [](int v) { world().ambientLight = v; });

    auto *power = new QGroupBox(QStringLiteral("Power"), this);
    auto *powerLayout = new QFormLayout(power);
    layout->addWidget(power);
    m_battery = addSlider(powerLayout, QStringLiteral("Battery"), 0, 100, world().batteryPercent, QStringLiteral("%"),
                          [](int v) { world().batteryPercent = v; });
    m_externalPower = new QCheckBox(QStringLiteral("Charger connected"), power);
    m_externalPower->setChecked(world().externalPower);
    connect(m_externalPower, &QCheckBox::toggled, this, [](bool on) { world().externalPower = on; });
    powerLayout->addRow(m_externalPower);

    auto *faults = new QGroupBox(QStringLiteral("Faults"), this);
    auto *faultsLayout = new QVBoxLayout(faults);
    servers->addWidget(faults);
    auto *noFrames = new QCheckBox(QStringLiteral("Camera delivers no frames"), faults);
    connect(noFrames, &QCheckBox::toggled, this, [](bool on) { SimulatedCamera::instance().setDelivering(!on); });
    faultsLayout->addWidget(noFrames);

    addAnalysisGroup(servers);
    addMailGroup(servers);
    addUpdateGroup(servers);
    servers->addStretch();
    auto *printersPage = new QWidget(tabs);
    auto *printers = new QVBoxLayout(printersPage);
    tabs->addTab(printersPage, QStringLiteral("Printers"));
    addPrinterGroup(printers);

    auto *aim = new QPushButton(QStringLiteral("Aim well"), this);
    aim->setObjectName(QStringLiteral("buttonAimWell"));
    connect(aim, &QPushButton::clicked, this, &ControlPanel::aimWell);
    layout->addWidget(aim);

    auto *measured = new QGroupBox(QStringLiteral("What the device measured"), this);
    auto *measuredLayout = new QVBoxLayout(measured);
    m_readouts = new QLabel(measured);
    m_readouts->setObjectName(QStringLiteral("labelReadouts"));
    m_readouts->setTextFormat(Qt::PlainText);
    m_readouts->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_readouts->setMinimumWidth(320);
    measuredLayout->addWidget(m_readouts);
    layout->addWidget(measured);
    layout->addStretch();

    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ControlPanel::refreshReadouts);
    timer->start(100);
    refreshReadouts();
}

QSlider *ControlPanel::addSlider(QFormLayout *form, const QString &label, int minimum, int maximum, int value,
                                 const QString &unit, void (*apply)(int))
{
    auto *row = new QWidget(this);
    auto *rowLayout = new QHBoxLayout(row);
    rowLayout->setContentsMargins(0, 0, 0, 0);
    auto *slider = new QSlider(Qt::Horizontal, row);
    slider->setRange(minimum, maximum);
    slider->setValue(value);
    slider->setMinimumWidth(220);
    auto *shown = new QLabel(row);
    shown->setMinimumWidth(70);
    const auto show = [shown, unit](int v) {
        shown->setText(QString::number(v) + unit);
    };
    show(value);
    connect(slider, &QSlider::valueChanged, this, [apply, show](int v) {
        apply(v);
        show(v);
    });
    rowLayout->addWidget(slider);
    rowLayout->addWidget(shown);
    form->addRow(label, row);
    return slider;
}

void ControlPanel::addUpdateGroup(QLayout *layout)
{
    auto *group = new QGroupBox(QStringLiteral("Update server"), this);
    auto *form = new QFormLayout(group);
    layout->addWidget(group);
    group->setEnabled(m_updateServer != nullptr);
    if (!m_updateServer)
        return;
    auto *newest = new QComboBox(group);
    newest->setObjectName(QStringLiteral("comboUpdateNewest"));
    newest->addItems(m_updateServer->versions());
    newest->setCurrentText(m_updateServer->newest());
    connect(newest, &QComboBox::currentTextChanged, this,
            [this](const QString &version) { m_updateServer->setNewest(version); });
    form->addRow(QStringLiteral("Offers as newest"), newest);
    auto *fault = new QComboBox(group);
    fault->setObjectName(QStringLiteral("comboUpdateFault"));
    for (int i = 0; i < UpdateServer::kFaultCount; ++i)
        fault->addItem(UpdateServer::faultName(static_cast<UpdateServer::Fault>(i)));
    fault->setCurrentIndex(static_cast<int>(m_updateServer->fault()));
    connect(fault, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { m_updateServer->setFault(static_cast<UpdateServer::Fault>(index)); });
    form->addRow(QStringLiteral("Fault"), fault);
    m_updateRequest = new QLabel(group);
    m_updateRequest->setObjectName(QStringLiteral("labelUpdateRequest"));
    m_updateRequest->setWordWrap(true);
    form->addRow(QStringLiteral("Last request"), m_updateRequest);
}

void ControlPanel::addAnalysisGroup(QLayout *layout)
{
    auto *group = new QGroupBox(QStringLiteral("Analysis server"), this);
    auto *form = new QFormLayout(group);
    layout->addWidget(group);

    const SimulatedWorld::Refraction refraction = world().refraction();
    const double dioptres[4] = {refraction.osSphere, refraction.odSphere, refraction.osCylinder, refraction.odCylinder};
    const char *const dioptreLabels[4] = {"OS sphere (left)", "OD sphere (right)", "OS cylinder (left)",
                                          "OD cylinder (right)"};
    const char *const dioptreNames[4] = {"spinOSSphere", "spinODSphere", "spinOSCylinder", "spinODCylinder"};
    for (int i = 0; i < 4; ++i) {
        auto *box = new QDoubleSpinBox(group);
        box->setObjectName(QLatin1String(dioptreNames[i]));
        box->setRange(-20.0, 20.0);
        box->setDecimals(2);
        box->setSingleStep(0.25);
        box->setSuffix(QStringLiteral(" D"));
        box->setValue(dioptres[i]);
        connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &ControlPanel::applyRefraction);
        form->addRow(QLatin1String(dioptreLabels[i]), box);
        m_dioptres[i] = box;
    }
    const auto addWhole = [this, group, form](const char *label, const char *name, int minimum, int maximum, int value,
                                              const QString &suffix) {
        auto *box = new QSpinBox(group);
        box->setObjectName(QLatin1String(name));
        box->setRange(minimum, maximum);
        box->setSuffix(suffix);
        box->setValue(value);
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &ControlPanel::applyRefraction);
        form->addRow(QLatin1String(label), box);
        return box;
    };
    m_pupilDistance =
        addWhole("Pupil distance", "spinPupilDistance", 30, 90, refraction.pupilDistance, QStringLiteral(" mm"));
    // Up to 200: the device shows an axis over 180 as it arrived, worth trying.
    m_osAxis = addWhole("OS axis (left)", "spinOSAxis", 0, 200, refraction.osAxis, QStringLiteral("°"));
    m_odAxis = addWhole("OD axis (right)", "spinODAxis", 0, 200, refraction.odAxis, QStringLiteral("°"));

    m_analysisFault = new QComboBox(group);
    m_analysisFault->setObjectName(QStringLiteral("comboAnalysisFault"));
    for (int i = 0; i < AnalysisServer::kFaultCount; ++i)
        m_analysisFault->addItem(AnalysisServer::faultName(static_cast<AnalysisServer::Fault>(i)));
    m_analysisFault->setEnabled(m_analysisServer != nullptr);
    if (m_analysisServer)
        m_analysisFault->setCurrentIndex(static_cast<int>(m_analysisServer->fault()));
    connect(m_analysisFault, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int index) {
        if (m_analysisServer)
            m_analysisServer->setFault(static_cast<AnalysisServer::Fault>(index));
    });
    form->addRow(QStringLiteral("Fault"), m_analysisFault);

    m_analysisRequests = new QLabel(group);
    m_analysisRequests->setObjectName(QStringLiteral("labelAnalysisRequests"));
    form->addRow(QStringLiteral("Requests received"), m_analysisRequests);
}

void ControlPanel::addMailGroup(QLayout *layout)
{
    auto *group = new QGroupBox(QStringLiteral("Mail server"), this);
    auto *form = new QFormLayout(group);
    layout->addWidget(group);
    m_mailCount = new QLabel(group);
    m_mailCount->setObjectName(QStringLiteral("labelMailCount"));
    form->addRow(QStringLiteral("Messages received"), m_mailCount);
    m_mailSubject = new QLabel(group);
    m_mailSubject->setObjectName(QStringLiteral("labelMailSubject"));
    m_mailSubject->setTextFormat(Qt::PlainText);
    m_mailSubject->setWordWrap(true);
    form->addRow(QStringLiteral("Last subject"), m_mailSubject);

    const QString state = qEnvironmentVariable("ORVELLA_SIM_DIR");
    if (!state.isEmpty())
        m_mailDir = state + QStringLiteral("/mail");
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ControlPanel::refreshMail);
    timer->start(1000);
    refreshMail();
}

void ControlPanel::addPrinterGroup(QLayout *layout)
{
    auto *group = new QGroupBox(QStringLiteral("Printers"), this);
    auto *form = new QVBoxLayout(group);
    layout->addWidget(group);

    form->addWidget(new QLabel(QStringLiteral("Bluetooth receipt printer, last receipt:"), group));
    m_receipt = new QLabel(group);
    m_receipt->setObjectName(QStringLiteral("labelReceipt"));
    m_receipt->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    auto *paper = new QScrollArea(group);
    paper->setWidget(m_receipt);
    paper->setWidgetResizable(true);
    paper->setMinimumSize(300, 420);
    form->addWidget(paper);
    m_receiptPath = new QLabel(group);
    m_receiptPath->setObjectName(QStringLiteral("labelReceiptPath"));
    m_receiptPath->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_receiptPath->setWordWrap(true);
    form->addWidget(m_receiptPath);

    auto *cloud = new QFormLayout;
    form->addLayout(cloud);
    m_cloudFault = new QComboBox(group);
    m_cloudFault->setObjectName(QStringLiteral("comboCloudPrintFault"));
    for (int i = 0; i < CloudPrintServer::kFaultCount; ++i)
        m_cloudFault->addItem(CloudPrintServer::faultName(static_cast<CloudPrintServer::Fault>(i)));
    m_cloudFault->setEnabled(m_cloudPrintServer != nullptr);
    connect(m_cloudFault, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int index) {
        if (m_cloudPrintServer)
            m_cloudPrintServer->setFault(static_cast<CloudPrintServer::Fault>(index));
    });
    cloud->addRow(QStringLiteral("Cloud service fault"), m_cloudFault);
    m_cloudRequests = new QLabel(group);
    cloud->addRow(QStringLiteral("Cloud requests"), m_cloudRequests);
    form->addWidget(new QLabel(
        QStringLiteral("Cloud printer, last ticket (device ID %1):").arg(CloudPrintServer::registeredDeviceId()),
        group));
    m_cloudTicket = new QLabel(group);
    m_cloudTicket->setObjectName(QStringLiteral("labelCloudTicket"));
    m_cloudTicket->setTextFormat(Qt::PlainText);
    m_cloudTicket->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_cloudTicket->setStyleSheet(QStringLiteral("background: rgb(250,248,240); color: rgb(40,40,48); padding: 6px;"));
    form->addWidget(m_cloudTicket);

    const QString state = qEnvironmentVariable("ORVELLA_SIM_DIR");
    if (!state.isEmpty())
        m_printerDir = state + QStringLiteral("/printer");
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ControlPanel::refreshPrinters);
    timer->start(1000);
    refreshPrinters();
}

void ControlPanel::refreshPrinters()
{
    const QFileInfo last(m_printerDir + QStringLiteral("/last-receipt.png"));
    if (m_printerDir.isEmpty() || !last.exists()) {
        m_receipt->setText(QStringLiteral("nothing printed yet"));
        m_receiptPath->clear();
    } else if (last.lastModified() != m_receiptTime) {
        m_receiptTime = last.lastModified();
        QPixmap picture(last.filePath());
        m_receipt->setPixmap(picture.width() > 300 ? picture.scaledToWidth(300, Qt::SmoothTransformation) : picture);
        m_receiptPath->setText(last.filePath());
    }
    if (!m_cloudPrintServer || !m_cloudPrintServer->isRunning()) {
        m_cloudRequests->setText(QStringLiteral("service not running"));
        return;
    }
    m_cloudRequests->setText(QString::number(m_cloudPrintServer->requestCount()));
    const QStringList pieces = m_cloudPrintServer->lastAcceptedPieces();
    m_cloudTicket->setText(pieces.isEmpty() ? QStringLiteral("nothing printed yet") : pieces.join(QLatin1Char('\n')));
}

void ControlPanel::refreshMail()
{
    if (m_mailDir.isEmpty()) {
        m_mailCount->setText(QStringLiteral("no mail server (ORVELLA_SIM_DIR is not set)"));
        m_mailSubject->clear();
        return;
    }
    // A maildir: delivered messages wait in new/ until a reader moves them to cur/.
    QFileInfoList messages;
    for (const char *folder : {"new", "cur"})
        messages += QDir(m_mailDir + QLatin1Char('/') + QLatin1String(folder)).entryInfoList(QDir::Files);
    m_mailCount->setText(QString::number(messages.size()));
    if (messages.isEmpty()) {
        m_mailSubject->setText(QStringLiteral("none yet"));
        return;
    }
    const auto newest = std::max_element(messages.begin(), messages.end(), [](const QFileInfo &a, const QFileInfo &b) {
        return a.lastModified() < b.lastModified() ||
               (a.lastModified() == b.lastModified() && a.fileName() < b.fileName());
    });
    const QString subject = subjectOf(newest->filePath());
    m_mailSubject->setText(subject.isEmpty() ? QStringLiteral("(no subject)") : subject);
}

void ControlPanel::applyRefraction()
{
    SimulatedWorld::Refraction refraction;
    refraction.osSphere = m_dioptres[0]->value();
    refraction.odSphere = m_dioptres[1]->value();
    refraction.osCylinder = m_dioptres[2]->value();
    refraction.odCylinder = m_dioptres[3]->value();
    refraction.pupilDistance = m_pupilDistance->value();
    refraction.osAxis = m_osAxis->value();
    refraction.odAxis = m_odAxis->value();
    world().setRefraction(refraction);
}

void ControlPanel::aimWell()
{
    m_distance->setValue(1080);
    m_pitch->setValue(0);
    m_ambient->setValue(5);
}

void ControlPanel::refreshReadouts()
{
    if (m_analysisServer && m_analysisServer->isRunning())
        m_analysisRequests->setText(QString::number(m_analysisServer->requestCount()));
    else
        m_analysisRequests->setText(QStringLiteral("server not running"));
    if (m_updateRequest)
        m_updateRequest->setText(m_updateServer->lastRequest());
    if (!g_pData)
        return;
    const int mode = g_pData->m_nCameraMode;
    QString text =
        QStringLiteral("camera mode      %1\n").arg(QLatin1String(mode >= 0 && mode <= 3 ? kModes[mode] : "?"));
    text += QStringLiteral("distance         %1 cm\n").arg(g_pData->m_nDistance.load());
    text += QStringLiteral("pitch            %1°\n").arg(g_pData->m_nPitch.load());
    text += QStringLiteral("brightness       %1\n").arg(g_pData->m_nPreviewBrightness.load());
    text += QStringLiteral("sharpness        %1\n").arg(g_pData->m_nPreviewContrast.load());
    text += QStringLiteral("screen           %1\n").arg(QLatin1String(world().screenOn ? "on" : "off"));
    text += QStringLiteral("IR aiming light  %1\n").arg(QLatin1String(world().irLight ? "on" : "off"));
    text += QStringLiteral("IR flash         %1").arg(QLatin1String(world().irFlashActive ? "pulsing" : "off"));
    m_readouts->setText(text);
}
