// SPDX-License-Identifier: GPL-2.0-or-later
// The application object, which also owns the translation in force.
#pragma once

#include <QApplication>

class QTranslator;

class Application : public QApplication
{
    Q_OBJECT

public:
    Application(int &argc, char **argv);

    // Replaces the installed translation with ":/i18n/app_<locale>.qm"; when
    // that cannot be loaded the built-in texts stay.
    void switchLanguage(const QString &locale);
    bool hasTranslation() const { return m_pTranslator != nullptr; }

    // "English", "Chinese", "Spanish" to their locale names; any other
    // setting gives an empty name and no translation.
    static QString localeForLanguage(const QString &language);

private:
    QTranslator *m_pTranslator = nullptr;
};
