// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the e-mail reporting page (switch, address, test mail).
#include "maindialog.h"

#include "camcfg.h"
#include "emailaddress.h"
#include "gdata.h"
#include "keypaddlg.h"
#include "msgdialog.h"
#include "ui_pageemail.h"
#include "ui_pagenomenu.h"
#include "uploaddlg.h"

#include <QCoreApplication>
#include <QPushButton>

namespace {

// The factory prompt is shown dim, so that it does not read as an address.
const char kPromptStyle[] = "color: rgb(100, 100, 100);";

// Taken at once, as the other settings pages do: a report due after the next
// test goes where the page said, even if the device is switched off here.
void saveSetting(int position, const QString &value)
{
    CamCfg &cfg = *g_pData->m_pCamCfg;
    cfg.setValue(position, value);
    cfg.dogenCurrentCFG();
    cfg.saveCFG2File();
}

// The address in force, empty when none is set.
QString savedAddress()
{
    const QString address = g_pData->m_pCamCfg->value(CamCfg::EmailAddress);
    return address == QLatin1String(emailaddress::kNoAddress) ? QString() : address;
}

// The export's files besides the HTML table, as settings position 22 names them.
const char *const kAttachmentWords[] = {"csv", "pdf", "fhir"};

QStringList savedAttachments()
{
    return g_pData->m_pCamCfg->value(CamCfg::ReportAttachments).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

void MainDialog::pageEmailInit()
{
    watchPresses(uiEmail->editEmailAddress, &MainDialog::editEmailAddressPressed);
    showEmailSettings();
}

void MainDialog::showEmailSettings()
{
    const bool on = g_pData->m_pCamCfg->value(CamCfg::EmailReporting) == QLatin1String("1");
    uiEmail->buttonEmailReporting->setChecked(on);
    uiEmail->buttonEmailReporting->setText(on ? tr("On") : tr("Off"));

    const QString address = savedAddress();
    if (address.isEmpty()) {
        uiEmail->editEmailAddress->setText(tr("Please Input Email"));
        uiEmail->editEmailAddress->setStyleSheet(QString::fromLatin1(kPromptStyle));
    } else {
        uiEmail->editEmailAddress->setText(address);
        uiEmail->editEmailAddress->setStyleSheet(QString());
    }
    uiEmail->editEmailAddress->setCursorPosition(0);

    const QStringList attachments = savedAttachments();
    QPushButton *const buttons[] = {uiEmail->buttonEmailCsv, uiEmail->buttonEmailPdf, uiEmail->buttonEmailFhir};
    for (int i = 0; i < 3; ++i)
        buttons[i]->setChecked(attachments.contains(QLatin1String(kAttachmentWords[i])));
}

void MainDialog::on_buttonEmailCsv_clicked()
{
    toggleReportAttachment(0);
}

void MainDialog::on_buttonEmailPdf_clicked()
{
    toggleReportAttachment(1);
}

void MainDialog::on_buttonEmailFhir_clicked()
{
    toggleReportAttachment(2);
}

void MainDialog::toggleReportAttachment(int which)
{
    QStringList words{QStringLiteral("html")};
    QStringList attachments = savedAttachments();
    const QString word = QLatin1String(kAttachmentWords[which]);
    if (attachments.contains(word))
        attachments.removeAll(word);
    else
        attachments << word;
    // Always in the same order, so that the file reads the same for the same choice.
    for (const char *known : kAttachmentWords) {
        if (attachments.contains(QLatin1String(known)))
            words << QLatin1String(known);
    }
    saveSetting(CamCfg::ReportAttachments, words.join(QLatin1Char(',')));
    showEmailSettings();
}

void MainDialog::on_buttonEmailSetting_clicked()
{
    pageEmailInit();
    showNoMenuPage(uiNoMenu->pageEmail);
}

void MainDialog::on_buttonEmailReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonEmailReporting_clicked()
{
    // The button has already changed its state when the click arrives.
    saveSetting(CamCfg::EmailReporting,
                uiEmail->buttonEmailReporting->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    showEmailSettings();
}

void MainDialog::editEmailAddressPressed()
{
    const QString saved = savedAddress();
    uiEmail->editEmailAddress->setText(saved);
    uiEmail->editEmailAddress->setStyleSheet(QString());
    KeypadDlg keypad;
    keypad.setTarget(uiEmail->editEmailAddress);
    keypad.move(mapToGlobal(QPoint(0, 350)));
    keypad.exec();

    // A stray space from the keypad's wide space bar is no part of an address.
    const QString typed = uiEmail->editEmailAddress->text().trimmed();
    if (typed != saved) {
        if (typed.isEmpty()) {
            saveSetting(CamCfg::EmailAddress, QString::fromLatin1(emailaddress::kNoAddress));
        } else if (emailaddress::isWellFormed(typed)) {
            saveSetting(CamCfg::EmailAddress, typed);
        } else {
            showEmailSettings();
            showMessage(tr("Invalid E-mail Address"), typed, QString(), tr("OK"), QString());
            return;
        }
    }
    showEmailSettings();
}

void MainDialog::on_buttonEmailTest_clicked()
{
    if (savedAddress().isEmpty()) {
        showMessage(tr("Please Input Email"), QString(), QString(), tr("OK"), QString());
        return;
    }
    // A plain message: a test must work before any child has been recorded.
    MsgDialog waiting;
    waiting.Init(tr("Mail is Sending, Please wait..."), QString(), QString(), QString(), QString());
    waiting.show();
    QCoreApplication::processEvents();
    const QString failure = g_pData->smtpSendTestMail();
    waiting.close();
    showMessage(failure.isEmpty() ? tr("Success") : failure, QString(), QString(), tr("OK"), QString());
}
