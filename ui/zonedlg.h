// SPDX-License-Identifier: GPL-2.0-or-later
// The time-zone chooser: one button for each of the device's 25 fixed-offset zones.
#pragma once

#include <QDialog>
#include <QList>
#include <QString>

#include <memory>

class QPushButton;

namespace Ui {
class ZoneDlg;
}

class ZoneDlg : public QDialog
{
    Q_OBJECT

public:
    explicit ZoneDlg(QWidget *parent = nullptr);
    ~ZoneDlg() override;

    // The translated label of a stored zone value; the value itself when no
    // zone has it (a settings file edited by hand).
    static QString zoneLabel(const QString &value);

    // Marks the zone in force; the list opens scrolled to it.
    void Init(const QString &current);

    // The value of the zone chosen ("0" ... "12", "-1" ... "-11", "5.5");
    // empty when the dialog was left without a choice.
    QString strZone;

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void on_buttonZoneReturn_clicked();

private:
    void choose(int zone);

    std::unique_ptr<Ui::ZoneDlg> ui;
    QList<QPushButton *> m_zoneButtons;
};
