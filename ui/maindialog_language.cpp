// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the language page, which switches the running interface without a restart.
#include "maindialog.h"

#include "application.h"
#include "camcfg.h"
#include "gdata.h"
#include "ui_pagelanguage.h"
#include "ui_pagenomenu.h"

#include <QCoreApplication>

namespace {

const QString kEnglish = QStringLiteral("English");
const QString kChinese = QStringLiteral("Chinese");
const QString kSpanish = QStringLiteral("Spanish");

} // namespace

void MainDialog::pageLanguageInit()
{
    const QString language = g_pData->m_pCamCfg->value(CamCfg::Language);
    // Any other setting loads no translation: the built-in English texts show.
    QPushButton *current = uiLanguage->buttonEnglish;
    if (language == kChinese)
        current = uiLanguage->buttonChinese;
    else if (language == kSpanish)
        current = uiLanguage->buttonSpanish;
    current->setChecked(true);
}

void MainDialog::chooseLanguage(const QString &language)
{
    storeSetting(CamCfg::Language, language);
    // The new translation reaches every window as a language-change event.
    if (auto *app = qobject_cast<Application *>(QCoreApplication::instance()))
        app->switchLanguage(Application::localeForLanguage(language));
    pageLanguageInit();
}

void MainDialog::on_buttonLanguageSetting_clicked()
{
    pageLanguageInit();
    showNoMenuPage(uiNoMenu->pageLanguage);
}

void MainDialog::on_buttonLanguageReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonEnglish_clicked()
{
    chooseLanguage(kEnglish);
}

void MainDialog::on_buttonChinese_clicked()
{
    chooseLanguage(kChinese);
}

void MainDialog::on_buttonSpanish_clicked()
{
    chooseLanguage(kSpanish);
}
