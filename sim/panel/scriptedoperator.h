// SPDX-License-Identifier: GPL-2.0-or-later
// A scripted tester for headless runs: works the device window and the scene, and reports.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

class CloudPrintServer;
class QProcess;
class UpdateServer;
class QWidget;

// Each step runs when its condition holds (checked every 100 ms, for at
// most its time limit), then waits its pause; a step whose condition never
// holds ends the run with an error, so a headless run cannot hang.
class ScriptedOperator : public QObject
{
    Q_OBJECT

public:
    // Which of the simulated device's boots this is, as the tester's notes
    // tell: the first runs the whole session and then installs the next
    // version; after that update the tester checks the version and installs
    // a broken one; after the broken one has been rolled back it checks the
    // version once more and ends the run.
    enum class Boot { First, AfterUpdate, AfterBrokenUpdate };

    ScriptedOperator(QWidget *device, const QString &screensDir, Boot boot = Boot::First, QObject *parent = nullptr);
    ~ScriptedOperator() override;

    void start();

    // The simulated cloud printing service, and the folder where the
    // simulated Bluetooth printer leaves its receipts.
    void setCloudPrintServer(CloudPrintServer *server) { m_cloudPrintServer = server; }
    void setPrinterDir(const QString &dir) { m_printerDir = dir; }
    // The simulated update server, and the file where the tester notes an
    // update before the device restarts into it.
    void setUpdateServer(UpdateServer *server, const QString &notesFile)
    {
        m_updateServer = server;
        m_notesFile = notesFile;
    }

private:
    struct Step
    {
        QString what;
        std::function<bool()> ready;
        std::function<void()> act;
        int pauseMs = 0;
        int limitMs = 15000;
    };

    // One child screened from the details page to the saved result.
    void addScreening(const QString &name, bool male, const QString &birthday, bool first);
    // On the printer page: scans, binds the simulated printer and prints a
    // test page; prints the result, then switches to the cloud printer and
    // prints it again.
    void addPrinting();
    // Opens phone setup on the Wi-Fi page, reads the PIN off the screen and
    // adds a network with the provisioning client, as a tester's laptop would.
    void addProvisioning();
    // The Scan button's list: the printer chosen once it shows, or the list
    // left when it never does.
    void chooseFromScanList(QWidget *list);
    // Types m_typing on the on-screen keyboard and closes it.
    void typeOnKeypad(QWidget *keypad);
    // Opens the settings page, presses "System Update" and accepts what it
    // offers, noting `note` first: the device restarts when it succeeds.
    void addUpdate(const QString &note, const QString &screen);
    // Reads the version on the machine identity page.
    void addVersionCheck(const QString &what, const QString &screen);
    void addFinish();
    // The soak run: `count` children screened one after the other, with the
    // process's memory, descriptors and threads reported after each.
    void addSoak(int count);
    QStringList receiptPictures() const;
    void answerMessageBox();
    QStringList historyRows() const;
    void tickHistoryRow(const QString &name) const;
    void tick();
    void say(const QString &text) const;
    QString screenshot(const QString &name) const;
    QString measured() const;
    bool click(const char *button) const;
    static bool click(QWidget *parent, const char *button);

    QWidget *m_device;
    QString m_screensDir;
    std::vector<Step> m_steps;
    size_t m_next = 0;
    int m_waitedMs = 0;
    int m_pauseMs = 0;
    QTimer m_timer;
    QTimer m_answerTimer;
    QElapsedTimer m_captureStarted;
    QWidget *m_answered = nullptr;
    QStringList m_answers;
    bool m_acting = false;
    int m_answersBeforeExport = 0;
    CloudPrintServer *m_cloudPrintServer = nullptr;
    UpdateServer *m_updateServer = nullptr;
    QString m_notesFile;
    QString m_printerDir;
    QElapsedTimer m_listShown;
    QString m_typing;
    QStringList m_receiptsBefore;
    std::unique_ptr<QProcess> m_provisionClient;
};
