// SPDX-License-Identifier: GPL-2.0-or-later
// The service user's version switch: the published versions, and the download of the one chosen.
#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include <memory>

namespace Ui {
class versiondlg;
}

// Opened from the Wi-Fi password box with the service code, after the
// version list has been fetched (GData::versionListGet).
class versiondlg : public QDialog
{
    Q_OBJECT

public:
    explicit versiondlg(QWidget *parent = nullptr);
    ~versiondlg() override;

    // One row per entry of the version list: its version and note.
    void Init(const QStringList &entries);

    // Asks, then downloads the version described by `descriptionFile`; on
    // success the settings are reset and the device restarts into it.
    // False when the operator declined or any step failed (after telling).
    bool versionSwitch(const QString &version, const QString &descriptionFile);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void on_buttonOK_clicked();
    void on_buttonCancel_clicked();

private:
    std::unique_ptr<Ui::versiondlg> ui;
    QStringList m_entries;
};
