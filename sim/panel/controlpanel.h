// SPDX-License-Identifier: GPL-2.0-or-later
// The tester's window beside the simulated device: the scene in front of it, its servers, what it measured.
#pragma once

#include <QDateTime>
#include <QWidget>

class AnalysisServer;
class CloudPrintServer;
class UpdateServer;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QSlider;
class QSpinBox;

// A tool for whoever tests the device, not part of the device: its texts are
// not translated.
class ControlPanel : public QWidget
{
    Q_OBJECT

public:
    // Without an analysis server its group sets only the refraction.
    explicit ControlPanel(AnalysisServer *analysisServer = nullptr, CloudPrintServer *cloudPrintServer = nullptr,
                          UpdateServer *updateServer = nullptr, QWidget *parent = nullptr);

    // The child at the working distance, the device level, a dim room.
    void aimWell();

private:
    QSlider *addSlider(QFormLayout *form, const QString &label, int minimum, int maximum, int value,
                       const QString &unit, void (*apply)(int));
    void addAnalysisGroup(QLayout *layout);
    void addMailGroup(QLayout *layout);
    void addUpdateGroup(QLayout *layout);
    void addPrinterGroup(QLayout *layout);
    void refreshPrinters();
    void refreshMail();
    void applyRefraction();
    void refreshReadouts();

    QSlider *m_distance = nullptr;
    QSlider *m_pitch = nullptr;
    QSlider *m_ambient = nullptr;
    QSlider *m_battery = nullptr;
    QCheckBox *m_externalPower = nullptr;
    QLabel *m_readouts = nullptr;

    AnalysisServer *m_analysisServer = nullptr;
    // OS sphere, OD sphere, OS cylinder, OD cylinder.
    QDoubleSpinBox *m_dioptres[4] = {};
    QSpinBox *m_pupilDistance = nullptr;
    QSpinBox *m_osAxis = nullptr;
    QSpinBox *m_odAxis = nullptr;
    QComboBox *m_analysisFault = nullptr;
    QLabel *m_analysisRequests = nullptr;

    // The Bluetooth printer's pictures and the cloud service's last ticket.
    CloudPrintServer *m_cloudPrintServer = nullptr;
    QString m_printerDir;
    QDateTime m_receiptTime;
    QLabel *m_receipt = nullptr;
    QLabel *m_receiptPath = nullptr;
    QComboBox *m_cloudFault = nullptr;
    QLabel *m_cloudRequests = nullptr;
    QLabel *m_cloudTicket = nullptr;

    // The version the update server offers, its faults and its last request.
    UpdateServer *m_updateServer = nullptr;
    QLabel *m_updateRequest = nullptr;

    // The maildir that scripts/simulate gives the simulator's mail server.
    QString m_mailDir;
    QLabel *m_mailCount = nullptr;
    QLabel *m_mailSubject = nullptr;
};
