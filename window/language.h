// SPDX-License-Identifier: MIT
#ifndef LANGUAGE_H
#define LANGUAGE_H

#include <QTranslator>

#include <array>

/** The language of all texts: those of the window, of the program's parts and of the library. */
class Language {
public:
    /** The languages that there are, as codes: "en" first. */
    static QStringList all();

    /** What a language calls itself. */
    static QString nameOf(const QString& code);

    /** The one of all() that a person with these languages, the best first, would choose. */
    static QString bestOf(const QStringList& wanted);

    /** Puts it into force at once; every widget gets QEvent::LanguageChange. */
    void use(const QString& code);

    const QString& code() const { return m_code; }

private:
    QString m_code = QStringLiteral("en");
    std::array<QTranslator, 3> m_texts;
};

#endif
