// The guide says what the program shows: its steps are taken and its numbers compared, its links
// lead somewhere, and no control and no message is left out.

#include "tests/docs/GuideReader.h"
#include "tests/forms/CatalogueText.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTranslator>
#include <QtTest>

namespace
{

const QString docs = QStringLiteral(SOURCE_FOLDER "/docs/");

QString readText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Pages of a language, below docs/.
QStringList pages(const QString& language)
{
    const QDir folder(docs + language);
    QStringList found;
    for (const QString& name : folder.entryList({QStringLiteral("*.md")}, QDir::Files))
        found.append(language + QLatin1Char('/') + name);
    return found;
}

QStringList allPages()
{
    QStringList found = pages(QStringLiteral("en")) + pages(QStringLiteral("ja"));
    found.append(QStringLiteral("../README.md"));
    for (const QString& name : QDir(docs).entryList({QStringLiteral("*.md")}, QDir::Files))
        found.append(name);
    return found;
}

QString textOfLanguage(const QString& language)
{
    QString text;
    for (const QString& page : pages(language))
        text += readText(docs + page);
    return text;
}

/// The anchor of a heading, as the usual viewers form it.
QString anchorOf(const QString& heading)
{
    static const QRegularExpression mark(QStringLiteral("[^\\p{L}\\p{N}\\- _]"));
    return heading.toLower().remove(mark).replace(QLatin1Char(' '), QLatin1Char('-'));
}

QStringList anchorsOf(const QString& page)
{
    QStringList anchors;
    for (const QString& line : page.split(QLatin1Char('\n')))
        if (line.startsWith(QLatin1Char('#')) && line.contains(QLatin1String("# ")))
            anchors.append(anchorOf(line.mid(line.indexOf(QLatin1Char(' ')) + 1)));
    return anchors;
}

/// A text as the guide quotes it: without the blanks around, and the numbers of a message open.
QStringList quotedParts(const QString& text)
{
    static const QRegularExpression placeholder(QStringLiteral("%[0-9]"));
    QStringList parts;
    for (const QString& part : text.split(placeholder))
        if (!part.trimmed().isEmpty())
            parts.append(part.trimmed());
    return parts;
}

/// The text of a menu's entry without the mark of its letter: "&Copy", "コピー(&C)".
QString plain(const QString& text)
{
    static const QRegularExpression mark(QStringLiteral("\\(&.\\)|&"));
    return QString(text).remove(mark);
}

/// Texts that no reader ever sees: titles replaced at once, placeholders, labels of hidden frames.
bool isNeverSeen(const CatalogueEntry& entry)
{
    static const QStringList hidden = {
        QStringLiteral("MainWindow"),    QStringLiteral("TextLabel"),
        QStringLiteral("No. "),          QStringLiteral("  Energy(eV)"),
        QStringLiteral("  mut(Ref 1)"),  QStringLiteral("  mut(Ref 2)"),
        QStringLiteral("  mut(Target)"), QStringLiteral("   mut(Blank)"),
        QStringLiteral("   2D ")};
    return hidden.contains(entry.source) || entry.translation.isEmpty();
}

/// Lines that the panel says in English in both languages, as they stand in the sources.
QStringList untranslatedLines()
{
    static const QRegularExpression line(
        QStringLiteral("QStringLiteral\\(\"((The|There|Can't) [^\"]+)\"\\)"));
    QStringList found;
    for (const char* const folder : {"app", "input", "results"}) {
        const QDir sources(docs + QStringLiteral("../") + QString::fromLatin1(folder));
        for (const QString& name : sources.entryList({QStringLiteral("*.cpp")}, QDir::Files)) {
            const QString text = readText(sources.filePath(name));
            for (auto match = line.globalMatch(text); match.hasNext();)
                found.append(match.next().captured(1));
        }
    }
    return found;
}

} // namespace

class tst_Guide : public QObject
{
    Q_OBJECT

private:
    QTranslator m_catalogue;

private slots:
    void initTestCase() { QVERIFY(m_catalogue.load(QStringLiteral(":/velk_ja_JP.qm"))); }
    void cleanup() { QApplication::removeTranslator(&m_catalogue); }

    void numbersAreThoseOnTheScreen_data()
    {
        QTest::addColumn<QString>("page");
        int steps = 0;
        for (const QString& page : allPages()) {
            const int own = guideSteps(readText(docs + page)).size();
            steps += own;
            if (own > 0)
                QTest::addRow("%s", page.toUtf8().constData()) << page;
        }
        QVERIFY(steps > 20);
    }
    void numbersAreThoseOnTheScreen()
    {
        QFETCH(QString, page);
        if (page.startsWith(QLatin1String("ja/")))
            QApplication::installTranslator(&m_catalogue);
        GuideReader reader(QStringLiteral(BUILD_FOLDER "/examples"));
        for (const GuideStep& step : guideSteps(readText(docs + page))) {
            const QByteArray place = page.toUtf8() + ':' + QByteArray::number(step.line);
            QVERIFY2(reader.take(step), place.constData());
            if (step.kind == GuideStep::See)
                QVERIFY2(reader.screen(step) == step.shown,
                         (place + ": " + reader.screen(step).toUtf8()).constData());
        }
    }

    void bothLanguagesTakeTheSameSteps()
    {
        for (const QString& page : pages(QStringLiteral("en"))) {
            const QVector<GuideStep> english = guideSteps(readText(docs + page));
            const QVector<GuideStep> japanese =
                guideSteps(readText(docs + QStringLiteral("ja") + page.mid(2)));
            QCOMPARE(japanese.size(), english.size());
            for (int i = 0; i < english.size(); ++i)
                QCOMPARE(japanese[i].words, english[i].words);
        }
    }

    void linksLeadSomewhere_data()
    {
        QTest::addColumn<QString>("page");
        for (const QString& page : allPages())
            QTest::addRow("%s", page.toUtf8().constData()) << page;
    }
    void linksLeadSomewhere()
    {
        QFETCH(QString, page);
        static const QRegularExpression link(QStringLiteral("\\]\\(([^)#]*)(#[^)]*)?\\)"));
        const QString text = readText(docs + page);
        for (auto match = link.globalMatch(text); match.hasNext();) {
            const QRegularExpressionMatch found = match.next();
            const QString name = found.captured(1);
            const QString target =
                name.isEmpty() ? docs + page : QFileInfo(docs + page).dir().filePath(name);
            QVERIFY2(QFileInfo(target).isFile(), qPrintable(found.captured()));
            const QString anchor = found.captured(2).mid(1);
            QVERIFY2(anchor.isEmpty() || anchorsOf(readText(target)).contains(anchor),
                     qPrintable(found.captured()));
        }
    }

    void everyTextIsExplained_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << QStringLiteral("en");
        QTest::newRow("Japanese") << QStringLiteral("ja");
    }
    void everyTextIsExplained()
    {
        QFETCH(QString, language);
        const bool english = language == QLatin1String("en");
        const QString guide = textOfLanguage(language);
        for (const CatalogueEntry& entry :
             readCatalogueText(QStringLiteral(SOURCE_FOLDER "/forms/velk_ja_JP.ts")) +
                 readCatalogueText(QStringLiteral(SOURCE_FOLDER "/app/extras_ja.ts"))) {
            if (isNeverSeen(entry))
                continue;
            for (const QString& part :
                 quotedParts(plain(english ? entry.source : entry.translation)))
                QVERIFY2(guide.contains(part), qPrintable(part));
        }
    }

    void everyUntranslatedLineIsExplained()
    {
        const QStringList lines = untranslatedLines();
        QVERIFY(lines.contains(QStringLiteral("The map is too large.")));
        for (const QString& page :
             {QStringLiteral("en/messages.md"), QStringLiteral("ja/messages.md")})
            for (const QString& line : lines)
                for (const QString& part : quotedParts(line))
                    QVERIFY2(readText(docs + page).contains(part), qPrintable(page + part));
    }
};

QTEST_MAIN(tst_Guide)
#include "tst_Guide.moc"
