// SPDX-License-Identifier: GPL-2.0-or-later
// The application object, which also owns the translation in force.
#include "application.h"

#include <QLocale>
#include <QTranslator>

Application::Application(int &argc, char **argv)
    : QApplication(argc, argv)
{
}

void Application::switchLanguage(const QString &locale)
{
    if (m_pTranslator) {
        removeTranslator(m_pTranslator);
        m_pTranslator->deleteLater();
        m_pTranslator = nullptr;
    }
    QLocale::setDefault(QLocale(locale));
    auto *translator = new QTranslator(this);
    if (translator->load(QStringLiteral(":/i18n/app_%1.qm").arg(locale))) {
        installTranslator(translator);
        m_pTranslator = translator;
    } else {
        translator->deleteLater();
    }
}

QString Application::localeForLanguage(const QString &language)
{
    if (language == QLatin1String("English"))
        return QStringLiteral("en_US");
    if (language == QLatin1String("Chinese"))
        return QStringLiteral("zh_CN");
    if (language == QLatin1String("Spanish"))
        return QStringLiteral("es_ES");
    return QString();
}
