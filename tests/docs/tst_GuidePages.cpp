#include "app/GuideWindow.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QScrollBar>
#include <QUrl>
#include <QtTest>

/// The guide as pages: each text has one, and whatever a page names is there.
class tst_GuidePages : public QObject
{
    Q_OBJECT

private slots:
    void everyTextHasAPage();
    void everyLinkLeadsSomewhere();
    void contentsAreOfOneLanguage_data();
    void contentsAreOfOneLanguage();
    void theWindowGoesToAPlaceInAPage();
};

namespace
{

const QString pages = QStringLiteral(BUILD_FOLDER "/docs/guide");

QStringList filesBelow(const QString& folder, const QString& pattern)
{
    QStringList files;
    QDirIterator it(folder, {pattern}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

QStringList valuesOf(const char* attribute, const QString& page)
{
    QStringList values;
    const QRegularExpression wanted(
        QStringLiteral("\\b%1=\"([^\"]*)\"").arg(QLatin1String(attribute)));
    auto it = wanted.globalMatch(QString::fromUtf8(contents(page)));
    while (it.hasNext())
        values << it.next().captured(1);
    return values;
}

} // namespace

void tst_GuidePages::everyTextHasAPage()
{
    QStringList expected{QStringLiteral("en/index.html"), QStringLiteral("ja/index.html")};
    for (const QString& text :
         filesBelow(QStringLiteral(SOURCE_FOLDER "/docs"), QStringLiteral("*.md")))
        if (text != QLatin1String("README.md"))
            expected << text.chopped(2) + QStringLiteral("html");
    expected.sort();
    QCOMPARE(filesBelow(pages, QStringLiteral("*.html")), expected);
}

void tst_GuidePages::everyLinkLeadsSomewhere()
{
    int places = 0;
    for (const QString& name : filesBelow(pages, QStringLiteral("*.html"))) {
        const QString page = pages + QLatin1Char('/') + name;
        const QUrl from = QUrl::fromLocalFile(page);
        for (const QString& image : valuesOf("src", page))
            QVERIFY2(QFile::exists(from.resolved(QUrl(image)).toLocalFile()),
                     qPrintable(name + QLatin1Char(' ') + image));
        for (const QString& link : valuesOf("href", page)) {
            const QUrl to = from.resolved(QUrl(link));
            QVERIFY2(QFile::exists(to.toLocalFile()), qPrintable(name + QLatin1Char(' ') + link));
            if (!to.hasFragment())
                continue;
            QVERIFY2(valuesOf("id", to.toLocalFile()).contains(to.fragment(QUrl::FullyDecoded)),
                     qPrintable(name + QLatin1Char(' ') + link));
            ++places;
        }
    }
    QVERIFY(places > 100);
}

void tst_GuidePages::contentsAreOfOneLanguage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("entry");
    QTest::newRow("English") << QStringLiteral("en") << QStringLiteral("Contents")
                             << QStringLiteral("Ten minutes: a valence, and a map");
    QTest::newRow("Japanese") << QStringLiteral("ja") << QStringLiteral("目次")
                              << QStringLiteral("10 分でひとめぐり");
}

void tst_GuidePages::contentsAreOfOneLanguage()
{
    QFETCH(QString, language);
    QFETCH(QString, title);
    QFETCH(QString, entry);
    const QString page = GuideWindow::firstPage(
        QStringLiteral(BUILD_FOLDER "/docs/guide/../../app"), language == QLatin1String("ja"));
    QCOMPARE(page,
             QDir::cleanPath(pages + QLatin1Char('/') + language + QStringLiteral("/index.html")));
    const GuideWindow window(page);
    QCOMPARE(window.documentTitle(), title);
    QVERIFY(window.toPlainText().split(QLatin1Char('\n')).contains(entry));
    const QStringList links = valuesOf("href", page);
    // All of the language; of the three pages of both, two have a Japanese text of their own.
    QVERIFY(links.size() >= 11);
    for (const QString& link : links)
        QVERIFY2(link.startsWith(QStringLiteral("../%1/").arg(language)) ||
                     language == QLatin1String("en"),
                 qPrintable(link));
}

void tst_GuidePages::theWindowGoesToAPlaceInAPage()
{
    GuideWindow window(pages + QStringLiteral("/ja/index.html"));
    window.show();
    const QUrl page = QUrl::fromLocalFile(pages + QStringLiteral("/ja/window.html"));
    window.setSource(page);
    QCOMPARE(window.verticalScrollBar()->value(), 0);
    window.setSource(page.resolved(QUrl(QStringLiteral("#グラフのウィンドウ"))));
    QVERIFY(window.verticalScrollBar()->value() > 0);
}

QTEST_MAIN(tst_GuidePages)
#include "tst_GuidePages.moc"
