#pragma once

#include <QString>
#include <QTranslator>

/// The words of pictures and report in the job's language, from a catalogue of their own. Nothing
/// is installed in the application, whose lines and files stay English. May be used by several
/// threads.
class OutputWords
{
public:
    /// @param language  "en" or "ja"; any other is English
    explicit OutputWords(const QString& language);

    /// @param text  in English, as in the catalogue batch_ja.ts
    QString operator()(const char* text) const;

    /// A text of the window, in its words.
    QString ofWindow(const char* context, const char* text) const;

    /// One of its panel.
    QString ofPanel(const char* text) const { return ofWindow("FourPs", text); }

    /// A line of the window's calculations, also behind a name ("s1.dat: ..."), translated with its
    /// numbers; any other as it is.
    QString line(const QString& line) const;

    bool japanese() const { return m_japanese; }

private:
    /// @return empty where the line is not known
    QString knownLine(const QString& line) const;

    bool m_japanese;
    QTranslator m_own;
    QTranslator m_window;
};
