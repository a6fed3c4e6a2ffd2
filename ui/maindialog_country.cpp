// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the region page, which picks the analysis server and the update folder.
#include "maindialog.h"

#include "camcfg.h"
#include "gdata.h"
#include "region.h"
#include "ui_pagecountry.h"

namespace {

struct RegionChoice
{
    int index;
    QPushButton *Ui::PageCountry::*button;
};
const RegionChoice kRegionChoices[] = {
    {region::Us, &Ui::PageCountry::buttonRegionUs},
    {region::India, &Ui::PageCountry::buttonRegionIndia},
    {region::China, &Ui::PageCountry::buttonRegionChina},
    {region::Philippines, &Ui::PageCountry::buttonRegionPhilippines},
};

const RegionChoice &choiceOf(int setting)
{
    const int index = region::forIndex(setting).index;
    for (const RegionChoice &choice : kRegionChoices) {
        if (choice.index == index)
            return choice;
    }
    return kRegionChoices[0];
}

} // namespace

void MainDialog::pageCountryInit()
{
    // A setting that names no region uploads to the US server, so that is what the page marks.
    (uiCountry.get()->*choiceOf(g_pData->m_nRegion).button)->setChecked(true);
}

QString MainDialog::regionLabel() const
{
    return (uiCountry.get()->*choiceOf(g_pData->m_nRegion).button)->text();
}

// Taken at once, as the other settings pages do: the next upload goes to the
// server of the region the page shows.
void MainDialog::chooseRegion(int index)
{
    g_pData->m_nRegion = index;
    storeSetting(CamCfg::Region, QString::number(index));
    pageCountryInit();
}

void MainDialog::on_buttonRegionUs_clicked()
{
    chooseRegion(region::Us);
}

void MainDialog::on_buttonRegionIndia_clicked()
{
    chooseRegion(region::India);
}

void MainDialog::on_buttonRegionChina_clicked()
{
    chooseRegion(region::China);
}

void MainDialog::on_buttonRegionPhilippines_clicked()
{
    chooseRegion(region::Philippines);
}
