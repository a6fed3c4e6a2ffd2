// SPDX-License-Identifier: GPL-2.0-or-later
// Finds Bluetooth printers and binds one to the serial port, by driving bluetoothctl and rfcomm.
#pragma once

#include "btdevice.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>

// Lives on the GUI thread; the tools run as child processes whose output
// arrives through signals, so nothing here blocks longer than a start-up
// limit. Every bind attempt ends in exactly one bindFinished.
class BtPrinterManager : public QObject
{
    Q_OBJECT

public:
    static constexpr int kStartLimitMs = 2000;
    static constexpr int kScanExitLimitMs = 1500;
    static constexpr int kPairLimitMs = 5000;
    static constexpr int kOneShotLimitMs = 1000;

    explicit BtPrinterManager(QObject *parent = nullptr);
    ~BtPrinterManager() override;

    // After a successful bind a blank line is printed through this (it wakes
    // the printer and proves the link); GData hands in its print job.
    void setPrintString(std::function<QString(const QString &)> printString);

    // Scans for `durationMs` milliseconds, reporting what it has seen so far
    // through scanUpdated as it goes, then all of it through scanResultReady.
    void startScan(int durationMs);
    void finishScan();
    bool isScanning() const;

    // Pairs and trusts the device, then binds RFCOMM port 0 to it.
    void bindDevice(const QString &mac, int channel);
    bool isBinding() const;

    // Terminal colour sequences out of bluetoothctl's output.
    static QString stripColours(const QString &text);
    // Adds or updates the devices named in cleaned output lines.
    static void parseScanText(const QString &text, QMap<QString, BtDevice> &devices);

signals:
    void scanUpdated(const QList<BtDevice> &devices);
    void scanResultReady(const QList<BtDevice> &devices);
    void errorOccurred(const QString &message);
    void bindFinished(bool ok, const QString &mac, int channel, const QString &message);

private slots:
    void onScanOutput();
    void onScanTimeout();
    void onPairOutput();
    void onPairFinished();
    void onPairWatchdog();
    void onKillOneShot();

private:
    enum class Step { Idle, Pairing, Releasing, Binding };

    QProcess *startBluetoothctl();
    // Runs a program once with a watchdog; false when it cannot start.
    bool startOneShot(const QString &program, const QStringList &arguments, const QByteArray &input = QByteArray());
    void onOneShotFinished();
    void failBind(const QString &message);
    void endProcess(QProcess *&process);

    std::function<QString(const QString &)> m_printString;

    QProcess *m_scanProcess = nullptr;
    QTimer m_scanTimer;
    QMap<QString, BtDevice> m_devices;
    QString m_scanCarry;

    QProcess *m_pairProcess = nullptr;
    QProcess *m_oneShot = nullptr;
    Step m_step = Step::Idle;
    QString m_mac;
    int m_channel = 1;
    bool m_bPaired = false;
    bool m_bPairTimedOut = false;
    QByteArray m_pairOutput;
    QTimer m_watchdog;
};
