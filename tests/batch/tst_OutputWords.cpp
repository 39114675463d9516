#include "batch/OutputWords.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>
#include <QtTest>

namespace
{

/// The texts that the sources ask for: words("..."), m_words("...") and QT_TRANSLATE_NOOP.
QSet<QString> textsOfSources()
{
    const QRegularExpression call(QStringLiteral(
        R"re((?:words|QT_TRANSLATE_NOOP)\(\s*(?:"Output",\s*)?((?:"(?:[^"\\]|\\.)*"\s*)+)\))re"));
    const QRegularExpression literal(QStringLiteral(R"re("((?:[^"\\]|\\.)*)")re"));
    QSet<QString> texts;
    const QDir folder(QStringLiteral(SOURCE_FOLDER "/batch"));
    for (const QString& name : folder.entryList({QStringLiteral("*.cpp")})) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        auto calls = call.globalMatch(QString::fromUtf8(file.readAll()));
        while (calls.hasNext()) {
            QString text;
            auto parts = literal.globalMatch(calls.next().captured(1));
            while (parts.hasNext())
                text += parts.next().captured(1);
            texts.insert(text);
        }
    }
    return texts;
}

/// The catalogue's texts with their translations.
QMap<QString, QString> catalogue()
{
    QFile file(QStringLiteral(SOURCE_FOLDER "/batch/batch_ja.ts"));
    QMap<QString, QString> messages;
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString source;
    while (!xml.atEnd()) {
        if (!xml.readNextStartElement())
            continue;
        if (xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation"))
            messages.insert(source, xml.readElementText());
    }
    return messages;
}

QString sorted(QStringList list)
{
    list.sort();
    return list.join(QLatin1Char('\n'));
}

QString places(const QString& text)
{
    QStringList found;
    auto matches = QRegularExpression(QStringLiteral("%\\d")).globalMatch(text);
    while (matches.hasNext())
        found.append(matches.next().captured());
    found.removeDuplicates();
    return sorted(found);
}

} // namespace

class TestOutputWords : public QObject
{
    Q_OBJECT

private slots:
    void catalogueHasTheTextsOfTheSources();
    void translationsKeepThePlacesOfNumbers();
    void englishIsAsWritten();
    void japaneseIsOfTheCatalogue();
    void linesKeepTheirNumbers_data();
    void linesKeepTheirNumbers();
};

void TestOutputWords::catalogueHasTheTextsOfTheSources()
{
    const QSet<QString> texts = textsOfSources();
    QVERIFY(texts.size() > 60);
    QCOMPARE(sorted(catalogue().keys()), sorted(texts.values()));
}

void TestOutputWords::translationsKeepThePlacesOfNumbers()
{
    const QMap<QString, QString> messages = catalogue();
    for (auto message = messages.begin(); message != messages.end(); ++message) {
        QVERIFY2(!message.value().isEmpty(), qPrintable(message.key()));
        QCOMPARE(places(message.value()), places(message.key()));
    }
}

void TestOutputWords::englishIsAsWritten()
{
    for (const char* language : {"en", "", "fr"}) {
        const OutputWords words(QString::fromLatin1(language));
        QVERIFY(!words.japanese());
        QCOMPARE(words("Refused:"), QStringLiteral("Refused:"));
        QCOMPARE(words.ofWindow("Displays", "M2/M3"), QStringLiteral("M2/M3"));
        QCOMPARE(words.line(QStringLiteral("V Point is not selected.")),
                 QStringLiteral("V Point is not selected."));
    }
}

void TestOutputWords::japaneseIsOfTheCatalogue()
{
    const OutputWords words(QStringLiteral("ja"));
    QVERIFY(words.japanese());
    const QMap<QString, QString> messages = catalogue();
    for (auto message = messages.begin(); message != messages.end(); ++message)
        QCOMPARE(words(message.key().toUtf8().constData()), message.value());
    QCOMPARE(words.ofWindow("AXafsFileSelect", "Edge Jump(1) : %1"),
             QString::fromUtf8("エッジジャンプ(1) : %1"));
    QCOMPARE(words.ofWindow("FourPs", "mut"), QStringLiteral("mut"));
}

void TestOutputWords::linesKeepTheirNumbers_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("translated");
    QTest::newRow("whole") << "V Point is not selected."
                           << QString::fromUtf8("V 点が選ばれていません。");
    QTest::newRow("without stop") << "V Point is not selected"
                                  << QString::fromUtf8("V 点が選ばれていません");
    QTest::newRow("numbers") << "Number of selected data sets 5 is not 4."
                             << QString::fromUtf8("選ばれたデータの数 5 が 4 ではありません。");
    QTest::newRow("behind a name")
        << "a/s1.dat: Target File1 is not valid."
        << QString::fromUtf8("a/s1.dat: 試料のファイルが有効ではありません。");
    QTest::newRow("own") << "The map is too large." << QString::fromUtf8("マップが大きすぎます。");
    QTest::newRow("ratios")
        << "a: sbys = 1, mean = 2, lsA = 3, lsB = 4, lsA(NB) = 5, lsB(NB) = 6, Vic2 = -7"
        << QString::fromUtf8("a: 和の比 = 1, 比の平均 = 2, 最小二乗 A = 3, 最小二乗 B = 4, "
                             "最小二乗 A(ブランク差引なし) = 5, 最小二乗 B(ブランク差引なし) = 6, "
                             "ビクトリーン = -7");
    QTest::newRow("not known") << "a: b"
                               << "a: b";
    QTest::newRow("a place in a name")
        << "Can't open the file [%2]" << QString::fromUtf8("ファイル [%2] を開けません");
}

void TestOutputWords::linesKeepTheirNumbers()
{
    QFETCH(QString, line);
    QTEST(OutputWords(QStringLiteral("ja")).line(line), "translated");
}

QTEST_APPLESS_MAIN(TestOutputWords)
#include "tst_OutputWords.moc"
