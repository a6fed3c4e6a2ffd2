// SPDX-License-Identifier: GPL-2.0-or-later
// Fixtures for tests of windows: the main window on a throw-away device, answering modal dialogs, reading
// message boxes.
#pragma once

#include "cmdutil.h"
#include "gdata.h"
#include "maindialog.h"
#include "testsupport.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>

class QWidget;

// The named child of `parent`; a missing one ends the run, as every later
// step of the test would fail on it anyway.
template <class T> T *findWidget(const QObject *parent, const char *name)
{
    T *found = parent->findChild<T *>(QLatin1String(name));
    if (!found)
        qFatal("no widget %s", name);
    return found;
}

// The main window and everything it stands on: a throw-away device, the
// command runner, the device's data (as g_pData) and a clock the test may
// stop. A test class derives from it and calls setUp() and tearDown() from its
// init() and cleanup(). The window's 200 ms tick is stopped: tests call tick().
class WindowFixture
{
protected:
    static constexpr qint64 kFrozenMs = 1700000000000LL; // 2023-11-14 22:13:20 UTC

    // A fresh device and simulated world with the data read from them; no window yet.
    void setUp();
    // The data read anew from the device's files, as after a restart.
    void startDevice();
    void openWindow(MainDialog::Workers workers = MainDialog::Workers::DoNotStart);
    // Undoes all of the above, the window first, and gives the process its own clock back.
    void tearDown();

    // From now on the device's clock reads `msecs` until advance() moves it on.
    void freezeClock(qint64 msecs = kFrozenMs);
    void advance(int seconds) { m_nowMs += 1000LL * seconds; }

    template <class T> T *widget(const char *name) const { return findWidget<T>(m_window.get(), name); }
    void click(const char *name);
    void tick();

    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<CmdUtil> m_cmd;
    std::unique_ptr<GData> m_data;
    std::unique_ptr<MainDialog> m_window;
    qint64 m_nowMs = 0;
};

// Answers each modal dialog that opens: hands it to `respond`, which must
// close it. A dialog still open two seconds later is closed here and counted
// as stuck, so a test can never hang on a modal loop.
class ModalResponder
{
public:
    explicit ModalResponder(std::function<void(QWidget *)> respond);
    ~ModalResponder();
    ModalResponder(const ModalResponder &) = delete;
    ModalResponder &operator=(const ModalResponder &) = delete;

    int count() const { return m_count; }

private:
    void poll();

    std::function<void(QWidget *)> m_respond;
    QTimer m_poll;
    QWidget *m_answered = nullptr;
    QElapsedTimer m_since;
    int m_count = 0;
    bool m_stuck = false;
};

// The visible texts of a message box, "title/message" or the lone title.
QString messageText(QWidget *box);

// Answers every message box by its middle button, keeping its texts in `shown`.
ModalResponder collectMessages(QStringList &shown);

// Clicks the named button of a dialog.
void pressButton(QWidget *dialog, const char *name);
