// The language that the program starts in, by its command line: the real program under a real X
// server, its window compared with one of this process.

#include "app/Body.h"

#include <QProcess>
#include <QScreen>
#include <QTranslator>
#include <QtTest>

namespace
{

/// What is seen of a window below the spectra, where no text cursor blinks and all is settled once
/// it is painted.
QImage picture(WId window)
{
    const QImage whole = QGuiApplication::primaryScreen()->grabWindow(window).toImage();
    return whole.copy(0, 130, whole.width(), whole.height() - 130);
}

/// Window of a running program, found by its title.
WId windowTitled(const QString& title)
{
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {QStringLiteral("search"), QStringLiteral("--sync"),
                  QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                  QLatin1Char('^') + title + QLatin1Char('$')});
    if (!search.waitForFinished())
        return 0;
    return search.readAllStandardOutput().trimmed().toULongLong();
}

QImage pictureOfOwnWindow()
{
    Body body;
    body.show();
    if (!QTest::qWaitForWindowExposed(&body))
        return {};
    return picture(body.winId());
}

} // namespace

class tst_Language : public QObject
{
    Q_OBJECT

private:
    QImage m_japanese;
    QImage m_english;

private slots:
    void initTestCase()
    {
        m_english = pictureOfOwnWindow();
        QTranslator catalogue;
        QVERIFY(catalogue.load(QStringLiteral(":/velk_ja_JP.qm")));
        QApplication::installTranslator(&catalogue);
        m_japanese = pictureOfOwnWindow();
        QApplication::removeTranslator(&catalogue);
        QVERIFY(!m_english.isNull());
        QVERIFY(m_english != m_japanese);
    }

    void followsTheCommandLine_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<bool>("japanese");
        QTest::newRow("none") << QString() << true;
        QTest::newRow("-j") << QStringLiteral("-j") << true;
        QTest::newRow("-e") << QStringLiteral("-e") << false;
        QTest::newRow("the last wins: -j") << QStringLiteral("-e -j") << true;
        QTest::newRow("the last wins: -e") << QStringLiteral("-j -e") << false;
        QTest::newRow("another case") << QStringLiteral("-E") << true;
        QTest::newRow("another dash") << QStringLiteral("--e") << true;
        QTest::newRow("more than -e") << QStringLiteral("-en") << true;
        QTest::newRow("anything else") << QStringLiteral("-e some.dat -x") << false;
        QTest::newRow("the toolkit's own") << QStringLiteral("-e -style fusion") << false;
    }
    void followsTheCommandLine()
    {
        QFETCH(QString, arguments);
        QFETCH(bool, japanese);
        QProcess program;
        program.start(QStringLiteral(WINDOW_PROGRAM),
                      arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
        QVERIFY(program.waitForStarted());
        const WId window = windowTitled(QStringLiteral("drovik"));
        QVERIFY(window != 0);
        QTRY_VERIFY(picture(window) == (japanese ? m_japanese : m_english));
        QVERIFY(picture(window) != (japanese ? m_english : m_japanese));
        program.kill();
        QVERIFY(program.waitForFinished());
    }
};

QTEST_MAIN(tst_Language)
#include "tst_Language.moc"
