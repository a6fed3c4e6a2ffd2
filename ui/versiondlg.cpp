// SPDX-License-Identifier: GPL-2.0-or-later
// The service user's version switch: the published versions, and the download of the one chosen.
#include "versiondlg.h"

#include "cmdutil.h"
#include "gdata.h"
#include "msgdialog.h"
#include "ui_versiondlg.h"
#include "uploaddlg.h"

#include <QShowEvent>

namespace {

int ask(const QString &title, const QString &left, const QString &middle, const QString &right)
{
    MsgDialog dialog;
    dialog.Init(title, QString(), left, middle, right);
    dialog.exec();
    return dialog.result;
}

} // namespace

versiondlg::versiondlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::versiondlg>())
{
    ui->setupUi(this);
    setModal(true);
}

versiondlg::~versiondlg() = default;

void versiondlg::Init(const QStringList &entries)
{
    m_entries = entries;
    ui->listWidgetVersion->clear();
    for (const QString &entry : entries) {
        const QStringList fields = entry.split(QLatin1Char('\t'));
        QString row = fields.at(0);
        if (fields.size() > 2 && !fields.at(2).trimmed().isEmpty())
            row += QStringLiteral("  ") + fields.at(2).trimmed();
        ui->listWidgetVersion->addItem(row);
    }
    if (!entries.isEmpty())
        ui->listWidgetVersion->setCurrentRow(0);
}

void versiondlg::showEvent(QShowEvent *event)
{
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        MsgDialog::centreOnDeviceScreen(this);
    QDialog::showEvent(event);
}

bool versiondlg::versionSwitch(const QString &version, const QString &descriptionFile)
{
    if (ask(tr("Switch to %1").arg(version), tr("Yes"), QString(), tr("No")) != 0)
        return false;
    if (g_pData->versionCheck(descriptionFile) <= 0) {
        ask(tr("Version Check Failed!"), QString(), tr("OK"), QString());
        return false;
    }
    UploadDlg download;
    download.mode = 1;
    download.exec();
    if (!download.bResult) {
        ask(tr("System Switch Failed!"), QString(), tr("OK"), QString());
        return false;
    }
    ask(tr("System Switch Success!"), QString(), tr("OK"), QString());
    // Another version may read the settings differently: it starts from the
    // factory values, deliberately.
    g_pData->cfgFileDelete();
    g_pData->m_pCmdUtil->reboot();
    return true;
}

void versiondlg::on_buttonOK_clicked()
{
    const int row = ui->listWidgetVersion->currentRow();
    if (row < 0 || row >= m_entries.size())
        return;
    const QStringList fields = m_entries.at(row).split(QLatin1Char('\t'));
    if (versionSwitch(fields.at(0).trimmed(), fields.at(1).trimmed()))
        accept();
}

void versiondlg::on_buttonCancel_clicked()
{
    reject();
}
