// SPDX-License-Identifier: MIT
#include "window/language.h"

#include <QCoreApplication>
#include <QLocale>

QStringList Language::all()
{
    return {QStringLiteral("en"), QStringLiteral("zh_CN")};
}

QString Language::nameOf(const QString& code)
{
    return code == QLatin1String("zh_CN") ? QStringLiteral("简体中文") : QStringLiteral("English");
}

QString Language::bestOf(const QStringList& wanted)
{
    for (const QString& language : wanted) {
        const QLocale locale(language);
        if (locale.language() == QLocale::English)
            break;
        if (locale.language() == QLocale::Chinese && locale.script() != QLocale::TraditionalChineseScript)
            return QStringLiteral("zh_CN");
    }
    return QStringLiteral("en");
}

void Language::use(const QString& code)
{
    const std::array<QString, 3> sheets{QStringLiteral("quenzotool"), QStringLiteral("quenzo"),
                                        QStringLiteral("quenzo-window")};
    for (size_t i = 0; i < sheets.size(); ++i) {
        QTranslator& texts = m_texts.at(i);
        QCoreApplication::removeTranslator(&texts);
        const QString file =
            QStringLiteral(":/%1/translations/%1_%2.qm").arg(sheets.at(i), code); // none for English
        if (texts.load(file))
            QCoreApplication::installTranslator(&texts);
    }
    m_code = code;
}
