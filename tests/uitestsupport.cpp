// SPDX-License-Identifier: GPL-2.0-or-later
// Fixtures for tests of windows: the main window on a throw-away device, answering modal dialogs, reading
// message boxes.
#include "uitestsupport.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QTest>

void WindowFixture::openWindow(MainDialog::Workers workers)
{
    m_window = std::make_unique<MainDialog>(nullptr, workers);
    widget<QTimer>("timerMain")->stop();
    m_window->show();
}

void WindowFixture::tearDown()
{
    m_window.reset();
    DeviceFixture::tearDown();
}

void WindowFixture::click(const char *name)
{
    QTest::mouseClick(widget<QPushButton>(name), Qt::LeftButton);
}

void WindowFixture::tick()
{
    QMetaObject::invokeMethod(m_window.get(), "on_timer", Qt::DirectConnection);
}

ModalResponder::ModalResponder(std::function<void(QWidget *)> respond)
    : m_respond(std::move(respond))
{
    m_poll.setInterval(10);
    QObject::connect(&m_poll, &QTimer::timeout, [this] { poll(); });
    m_poll.start();
}

ModalResponder::~ModalResponder()
{
    if (m_stuck)
        QTest::qFail("a modal dialog was left open", __FILE__, __LINE__);
}

void ModalResponder::poll()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (!modal) {
        m_answered = nullptr;
        return;
    }
    if (modal != m_answered) {
        // Dialogs live on their callers' stacks, so the next one may reuse
        // the address of the last: forget it once it is gone.
        m_answered = modal;
        QObject::connect(modal, &QObject::destroyed, &m_poll, [this] { m_answered = nullptr; });
        m_since.start();
        ++m_count;
        m_respond(modal);
    } else if (m_since.elapsed() > 2000) {
        m_stuck = true;
        modal->close();
    }
}

QString messageText(QWidget *box)
{
    QStringList texts;
    for (const char *name : {"labelTitle", "labelMsg", "labelTitleMsg"}) {
        auto *label = box->findChild<QLabel *>(QLatin1String(name));
        if (label && label->isVisibleTo(box))
            texts << label->text();
    }
    return texts.join(QLatin1Char('/'));
}

void pressButton(QWidget *dialog, const char *name)
{
    auto *button = dialog->findChild<QPushButton *>(QLatin1String(name));
    if (!button) {
        QTest::qFail(qPrintable(QStringLiteral("no button %1").arg(QLatin1String(name))), __FILE__, __LINE__);
        return;
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

ModalResponder collectMessages(QStringList &shown)
{
    return ModalResponder([&shown](QWidget *box) {
        shown << messageText(box);
        pressButton(box, "buttonMiddle1");
    });
}
