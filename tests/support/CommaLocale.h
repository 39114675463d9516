#pragma once

#include <QByteArray>
#include <QLocale>

#include <clocale>

/// While it lives, numbers are written with a comma by everything that follows the locale. The C
/// library's part needs a locale that is installed; the toolkit brings its own.
class CommaLocale
{
public:
    CommaLocale() : m_before(std::setlocale(LC_ALL, nullptr)), m_default(QLocale())
    {
        QLocale::setDefault(QLocale(QLocale::German));
        for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "ru_RU.UTF-8"})
            if (std::setlocale(LC_ALL, name) != nullptr)
                break;
    }
    ~CommaLocale()
    {
        std::setlocale(LC_ALL, m_before.constData());
        QLocale::setDefault(m_default);
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    QByteArray m_before;
    QLocale m_default;
};
