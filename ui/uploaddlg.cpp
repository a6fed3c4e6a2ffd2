// SPDX-License-Identifier: GPL-2.0-or-later
// The "please wait" dialog: runs one long operation chosen by its mode and keeps the result.
#include "uploaddlg.h"

#include "gdata.h"
#include "msgdialog.h"
#include "ui_uploaddlg.h"

#include <QDebug>
#include <QEvent>
#include <QShowEvent>
#include <QTimer>

namespace {

// The figure is a reassurance, not a measurement: none of the operations
// reports how far it has got, so the dialog counts seconds and stops short
// of 100 % to leave room for an operation that runs long.
constexpr int kProgressCeiling = 90;

QString modeText(int mode)
{
    switch (mode) {
    case 0: return UploadDlg::tr("Data is processing, Please wait...");
    case 1: return UploadDlg::tr("File is downloading, Please wait...");
    case 4:
    case 5: return UploadDlg::tr("It is printing, Please wait...");
    case 6: return UploadDlg::tr("Version checking, Please wait...");
    case 7: return UploadDlg::tr("Sending Result, Please wait...");
    case 9: return UploadDlg::tr("Mail is Sending, Please wait...");
    default: return QString();
    }
}

} // namespace

UploadDlg::UploadDlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::UploadDlg>())
{
    ui->setupUi(this);
    setModal(true);
    installEventFilter(this);

    auto *progressTimer = new QTimer(this);
    connect(progressTimer, &QTimer::timeout, this, &UploadDlg::timerProgress);
    progressTimer->start(1000);
}

UploadDlg::~UploadDlg() = default;

bool UploadDlg::eventFilter(QObject *watched, QEvent *event)
{
    // The operation starts once the dialog is on screen and active, so that
    // "please wait" is visible before the GUI thread blocks.
    if (watched == this && event->type() == QEvent::WindowActivate)
        runOperation();
    return QDialog::eventFilter(watched, event);
}

void UploadDlg::timerProgress()
{
    if (progress >= kProgressCeiling)
        return;
    ++progress;
    ui->labelTimer->setText(QString::number(progress) + QLatin1Char('%'));
    ui->progressBar->setValue(progress);
}

void UploadDlg::showEvent(QShowEvent *event)
{
    ui->labelMsg->setText(modeText(mode));
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        MsgDialog::centreOnDeviceScreen(this);
    QDialog::showEvent(event);

    // Without a window manager a window may never be activated; the dialog
    // must not then wait for ever.
    QTimer::singleShot(0, this, &UploadDlg::runOperation);
}

void UploadDlg::resizeEvent(QResizeEvent *event)
{
    MsgDialog::roundWindowCorners(this);
    QDialog::resizeEvent(event);
}

void UploadDlg::runOperation()
{
    // Activation comes again whenever the operator returns to the window,
    // and the fallback fires after the first activation as well.
    if (m_bOperationStarted)
        return;
    m_bOperationStarted = true;

    // Nothing repaints while the operation holds the GUI thread, so draw the
    // text now if the window can already show it.
    repaint();

    qDebug("UploadDlg mode %d", mode);
    const GData::BusyJob job(*g_pData);
    switch (mode) {
    case 0: bResult = g_pData->uploadAVIFile(); break;
    case 1: bResult = g_pData->versionDownlod(); break;
    case 4: strResult = g_pData->printTestpage(); break;
    case 5: strResult = g_pData->printResult(); break;
    case 6: nResult = g_pData->versionCheck(); break;
    case 7: strResult = g_pData->smtpSendReport(); break;
    case 9: strResult = g_pData->smtpSendVideoReport(); break;
    default: break; // 2, 3 and 8 have nothing to run
    }

    // Queued: should a platform activate the window inside show(), before
    // exec() has started its loop, a direct close would leave exec() waiting
    // on a hidden dialog.
    QMetaObject::invokeMethod(this, "close", Qt::QueuedConnection);
}
