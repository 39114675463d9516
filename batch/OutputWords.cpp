#include "batch/OutputWords.h"

#include <QRegularExpression>

// Resources of a library are at hand once it has been asked for; outside any namespace.
static void initialiseCatalogues()
{
    Q_INIT_RESOURCE(batch_ja);
    Q_INIT_RESOURCE(velk_ja_JP);
}

namespace
{

// In the window's catalogue; the numbers of each stand in their order.
constexpr const char* lineContext = "FourPs";
constexpr const char* knownLines[] = {
    "V Point is not selected.",
    "V Point is not selected",
    "Ref File1 is not valid.",
    "Ref File2 is not valid.",
    "Target File1 is not valid.",
    "Number of selected data sets %1 is not %2.",
    "Energy Range is not selected, which should by selected by CB of TR.",
    "Can't open the file [%1]",
    "sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, Vic2 = %7",
};

// In this program's catalogue: what has none in the window's.
constexpr const char* ownLines[] = {
    QT_TRANSLATE_NOOP("Output", "The map is too large."),
    QT_TRANSLATE_NOOP("Output", "The number of histogram boxes is too large."),
};

QRegularExpression patternOf(const char* text)
{
    QString pattern = QRegularExpression::escape(QString::fromLatin1(text));
    static const QRegularExpression place(QStringLiteral(R"(\\%\d)"));
    pattern.replace(place, QStringLiteral("(.+)"));
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

/// A text with "%1", "%2" ... replaced, each in its place.
/// @param numbers  from the second one on
QString withNumbers(const QString& text, const QStringList& numbers)
{
    QString found;
    for (int i = 0; i < text.size(); ++i) {
        const int number = text[i] == QLatin1Char('%') ? text.mid(i + 1, 1).toInt() : 0;
        if (number > 0 && number < numbers.size()) {
            found += numbers[number];
            ++i;
        } else {
            found += text[i];
        }
    }
    return found;
}

} // namespace

OutputWords::OutputWords(const QString& language) : m_japanese(language == QLatin1String("ja"))
{
    if (!m_japanese)
        return;
    initialiseCatalogues();
    m_own.load(QStringLiteral(":/batch_ja"));
    m_window.load(QStringLiteral(":/velk_ja_JP"));
}

QString OutputWords::operator()(const char* text) const
{
    const QString found = m_own.translate("Output", text);
    return found.isEmpty() ? QString::fromUtf8(text) : found;
}

QString OutputWords::ofWindow(const char* context, const char* text) const
{
    const QString found = m_window.translate(context, text);
    return found.isEmpty() ? QString::fromUtf8(text) : found;
}

QString OutputWords::line(const QString& line) const
{
    if (!m_japanese)
        return line;
    const QString whole = knownLine(line);
    const int behindName = line.indexOf(QLatin1String(": ")) + 2;
    if (!whole.isEmpty() || behindName < 2)
        return whole.isEmpty() ? line : whole;
    const QString rest = knownLine(line.mid(behindName));
    return rest.isEmpty() ? line : line.left(behindName) + rest;
}

QString OutputWords::knownLine(const QString& line) const
{
    for (const char* own : ownLines)
        if (line == QLatin1String(own))
            return (*this)(own);
    for (const char* known : knownLines) {
        const QRegularExpressionMatch match = patternOf(known).match(line);
        if (!match.hasMatch())
            continue;
        const QString translated = ofWindow(lineContext, known);
        return withNumbers(translated, match.capturedTexts());
    }
    return {};
}
