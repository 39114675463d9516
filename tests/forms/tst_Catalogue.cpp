// The Japanese catalogue: what is compiled into the program, and the care taken with its entries.

#include "tests/forms/CatalogueText.h"
#include "tests/forms/CompiledCatalogue.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace
{

const QString resource = QStringLiteral(":/velk_ja_JP.qm");

QByteArray compiledCatalogue()
{
    QFile file(resource);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Texts that are the same in every language: defaults that are numbers, brackets, captions of the
/// graphs' axes and the titles of inner frames.
bool staysEnglish(const CatalogueEntry& entry)
{
    static const QStringList stays = {
        QStringLiteral("8350"),    QStringLiteral("-50"),      QStringLiteral("100"),
        QStringLiteral("1.5"),     QStringLiteral("3.5"),      QStringLiteral("-0.2"),
        QStringLiteral("1.2"),     QStringLiteral("41"),       QStringLiteral("2"),
        QStringLiteral("3"),       QStringLiteral("("),        QStringLiteral(")"),
        QStringLiteral("LCF"),     QStringLiteral("4ps"),      QStringLiteral("Thick."),
        QStringLiteral("Num."),    QStringLiteral("M2"),       QStringLiteral("M3"),
        QStringLiteral("mut"),     QStringLiteral("Eng.[eV]"), QStringLiteral("x-title"),
        QStringLiteral("y-title"), QStringLiteral("Frame")};
    return stays.contains(entry.source);
}

/// The blanks around a text; forms use them for their layout.
QString edgesOf(const QString& text)
{
    static const QRegularExpression inner(QStringLiteral("\\S.*\\S|\\S"));
    return QString(text).replace(inner, QStringLiteral("x"));
}

QStringList placeholdersOf(const QString& text)
{
    static const QRegularExpression placeholder(QStringLiteral("%[0-9L]+"));
    QStringList found;
    for (auto match = placeholder.globalMatch(text); match.hasNext();)
        found.append(match.next().captured());
    found.sort();
    return found;
}

QString mnemonicOf(const QString& text)
{
    const int mark = text.indexOf(QLatin1Char('&'));
    return mark < 0 ? QString() : text.mid(mark + 1, 1).toUpper();
}

QByteArray rowName(const CatalogueEntry& entry)
{
    return (entry.context + QLatin1Char('/') + entry.source).toUtf8();
}

using Texts = QSet<QPair<QString, QString>>;

/// Contexts and texts of a translation source.
Texts textsOf(const QString& path)
{
    Texts texts;
    for (const CatalogueEntry& entry : readCatalogueText(path))
        texts.insert({entry.context, entry.source});
    return texts;
}

QByteArray listed(const Texts& texts)
{
    QStringList lines;
    for (const auto& [context, source] : texts)
        lines.append(context + QStringLiteral(": ") + source);
    lines.sort();
    return lines.join(QLatin1Char('\n')).toUtf8();
}

void addEntryRows()
{
    QTest::addColumn<QString>("context");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("translation");
    QTest::addColumn<bool>("stays");
    for (const CatalogueEntry& entry :
         readCatalogueText(QStringLiteral(SOURCE_FOLDER "/forms/velk_ja_JP.ts")))
        QTest::addRow("%s", rowName(entry).constData())
            << entry.context << entry.source << entry.translation << staysEnglish(entry);
}

} // namespace

class tst_Catalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isTheOnlyFileAtTheRoot()
    {
        const QStringList files = QDir(QStringLiteral(":/")).entryList(QDir::Files);
        QCOMPARE(files, QStringList(QStringLiteral("velk_ja_JP.qm")));
    }

    void holdsHashesAndMessagesOnly()
    {
        const QVector<CatalogueSection> sections = catalogueSections(compiledCatalogue());
        QCOMPARE(sections.size(), 2);
        QCOMPARE(sections[0].tag, hashSection);
        QCOMPARE(sections[1].tag, messageSection);
        // A hash and an offset of four bytes each for every message.
        QCOMPARE(sections[0].bytes.size(), 128 * 8);
    }

    void countsMessagesByContext_data()
    {
        QTest::addColumn<QByteArray>("context");
        QTest::addColumn<int>("count");
        QTest::newRow("panel") << QByteArray("FourPs") << 89;
        QTest::newRow("energy point") << QByteArray("AEPoint") << 11;
        QTest::newRow("graph window") << QByteArray("Displays") << 10;
        QTest::newRow("graph panel") << QByteArray("DispABase") << 7;
        QTest::newRow("file selector") << QByteArray("AFileSelect") << 4;
        QTest::newRow("spectrum selector") << QByteArray("AXafsFileSelect") << 4;
        QTest::newRow("main window") << QByteArray("Body") << 1;
        QTest::newRow("canvas") << QByteArray("DispArea") << 1;
        QTest::newRow("pop-out") << QByteArray("PopBase") << 1;
    }
    void countsMessagesByContext()
    {
        QFETCH(QByteArray, context);
        QFETCH(int, count);
        const QVector<CatalogueSection> sections = catalogueSections(compiledCatalogue());
        QCOMPARE(sections.size(), 2);
        const QVector<QByteArray> contexts = messageContexts(sections[1].bytes);
        QCOMPARE(contexts.size(), 128);
        QCOMPARE(contexts.count(context), count);
    }

    void everyEntryIsFinishedAndOccursOnce()
    {
        QVector<CatalogueEntry> entries =
            readCatalogueText(QStringLiteral(SOURCE_FOLDER "/forms/velk_ja_JP.ts"));
        QCOMPARE(entries.size(), 128);
        for (const CatalogueEntry& entry : qAsConst(entries))
            QVERIFY2(entry.finished, rowName(entry).constData());
        QCOMPARE(textsOf(QStringLiteral(SOURCE_FOLDER "/forms/velk_ja_JP.ts")).size(), 128);
    }

    void holdsTheTextsOfFormsAndCode()
    {
        const QTemporaryDir folder;
        const QString found = folder.filePath(QStringLiteral("found.ts"));
        QProcess lupdate;
        lupdate.setWorkingDirectory(QStringLiteral(SOURCE_FOLDER));
        QStringList arguments = QStringLiteral("-silent -locations none").split(QLatin1Char(' '));
        arguments += QStringLiteral("analysis app batch display forms input results")
                         .split(QLatin1Char(' '));
        arguments += {QStringLiteral("-ts"), found};
        lupdate.start(QStringLiteral(LUPDATE), arguments);
        QVERIFY(lupdate.waitForFinished());
        QCOMPARE(lupdate.exitCode(), 0);

        const Texts inSources = textsOf(found);
        const Texts inCatalogue = textsOf(QStringLiteral(SOURCE_FOLDER "/forms/velk_ja_JP.ts"));
        const Texts inExtras = textsOf(QStringLiteral(SOURCE_FOLDER "/app/extras_ja.ts"));
        const Texts inOutputs = textsOf(QStringLiteral(SOURCE_FOLDER "/batch/batch_ja.ts"));
        QCOMPARE(listed(inSources - inCatalogue - inExtras - inOutputs), QByteArray());
        QCOMPARE(listed(inExtras - inSources), QByteArray());
        QCOMPARE(listed(inCatalogue - inSources), QByteArray());
    }

    /// What lies around the panel has a catalogue of its own, below the root.
    void extrasAreAllTranslated()
    {
        QTranslator extras;
        QVERIFY(extras.load(QStringLiteral(":/extras/extras_ja.qm")));
        const QVector<CatalogueEntry> entries =
            readCatalogueText(QStringLiteral(SOURCE_FOLDER "/app/extras_ja.ts"));
        QVERIFY(!entries.isEmpty());
        static const QRegularExpression japanese(
            QStringLiteral("[\\p{Hiragana}\\p{Katakana}\\p{Han}]"));
        for (const CatalogueEntry& entry : entries) {
            const QByteArray name = rowName(entry);
            QVERIFY2(entry.finished && entry.translation.contains(japanese), name.constData());
            QCOMPARE(extras.translate(entry.context.toUtf8().constData(),
                                      entry.source.toUtf8().constData()),
                     entry.translation);
            QCOMPARE(placeholdersOf(entry.translation), placeholdersOf(entry.source));
            // The letter under which a menu's entry is found is the same, if there is one.
            QVERIFY2(mnemonicOf(entry.translation) == mnemonicOf(entry.source), name.constData());
        }
    }

    void translatesAllButWhatStays_data() { addEntryRows(); }
    void translatesAllButWhatStays()
    {
        QFETCH(QString, context);
        QFETCH(QString, source);
        QFETCH(QString, translation);
        QFETCH(bool, stays);
        QCOMPARE(translation.isEmpty(), stays);

        QTranslator catalogue;
        QVERIFY(catalogue.load(resource));
        const QString shown =
            catalogue.translate(context.toUtf8().constData(), source.toUtf8().constData());
        QCOMPARE(shown, translation);
        // Only where there is no translation at all, not an empty one, does the source stay.
        QCOMPARE(shown.isNull(), stays);
    }

    void keepsPlaceholdersAndOuterBlanks_data() { addEntryRows(); }
    void keepsPlaceholdersAndOuterBlanks()
    {
        QFETCH(QString, source);
        QFETCH(QString, translation);
        QFETCH(bool, stays);
        if (stays)
            return;
        QCOMPARE(placeholdersOf(translation), placeholdersOf(source));
        QCOMPARE(edgesOf(translation), edgesOf(source));
    }
};

QTEST_GUILESS_MAIN(tst_Catalogue)
#include "tst_Catalogue.moc"
