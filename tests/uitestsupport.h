// SPDX-License-Identifier: GPL-2.0-or-later
// Fixtures for tests of windows: answering modal dialogs, reading message boxes.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

#include <functional>

class QWidget;

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

// Clicks the named button of a dialog.
void pressButton(QWidget *dialog, const char *name);
