// SPDX-License-Identifier: GPL-2.0-or-later
// Fixtures for tests of windows: the main window on a throw-away device, answering modal dialogs, reading
// message boxes.
#pragma once

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

// The main window over a DeviceFixture, whose clock a test may stop. A test
// class derives from it and calls setUp() and tearDown() from its init() and
// cleanup(). The window's 200 ms tick is stopped: tests call tick().
class WindowFixture : public DeviceFixture
{
protected:
    void openWindow(MainDialog::Workers workers = MainDialog::Workers::DoNotStart);
    // The window first, then the device.
    void tearDown();

    template <class T> T *widget(const char *name) const { return findWidget<T>(m_window.get(), name); }
    void click(const char *name);
    void tick();

    std::unique_ptr<MainDialog> m_window;
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
