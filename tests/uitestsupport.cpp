// SPDX-License-Identifier: GPL-2.0-or-later
// Fixtures for tests of windows: answering modal dialogs, reading message boxes.
#include "uitestsupport.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QTest>

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
