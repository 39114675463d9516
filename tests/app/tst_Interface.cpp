// The whole interface in both languages: every text is there, in its language, and shown whole.

#include "app/Body.h"
#include "app/ScreenScroll.h"
#include "display/DispABase.h"
#include "display/PopBase.h"
#include "display/ScreenRoom.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/PanelActions.h"

#include <QRegularExpression>
#include <QScopedPointer>
#include <QSet>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace
{

/// A screen on which the windows have room, less what a desktop takes for its bars.
constexpr QSize smallScreen(1280, 760);

bool isJapanese(const QString& text)
{
    static const QRegularExpression letter(QStringLiteral("[\\p{Hiragana}\\p{Katakana}\\p{Han}]"));
    return text.contains(letter);
}

/// Texts that are the same in every language.
bool staysEnglish(const QString& text)
{
    static const QStringList stays = {QStringLiteral("drovik"), QStringLiteral("Frame"),
                                      QStringLiteral("LCF"),    QStringLiteral("M2/M3"),
                                      QStringLiteral("("),      QStringLiteral(")"),
                                      QStringLiteral(" x:"),    QStringLiteral("y:")};
    static const QRegularExpression rowNumber(QStringLiteral("^ *[1-8]$"));
    return stays.contains(text) || text.contains(rowNumber);
}

/// The widgets of a window that show a fixed text. The titles beside the read-outs are not among
/// them: the graphs draw these themselves.
QList<QWidget*> textWidgets(const QWidget& window)
{
    QList<QWidget*> found;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool drawn = widget->objectName() == QLatin1String("XTitle") ||
                           widget->objectName() == QLatin1String("YTitle");
        const bool text = qobject_cast<QLabel*>(widget) || qobject_cast<QAbstractButton*>(widget);
        const bool ofTheForms = !widget->objectName().startsWith(QLatin1String("qt_"));
        if (text && ofTheForms && !drawn && widget->isVisibleTo(&window))
            found.append(widget);
    }
    return found;
}

QString textOf(const QWidget* widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        return label->text();
    return qobject_cast<const QAbstractButton*>(widget)->text();
}

/// Where a widget has room for its text.
QRect roomFor(const QWidget* widget)
{
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    if (!button)
        return widget->contentsRect();
    QStyleOptionButton option;
    option.initFrom(button);
    option.text = button->text();
    const QStyle::SubElement element =
        qobject_cast<const QCheckBox*>(button)      ? QStyle::SE_CheckBoxContents
        : qobject_cast<const QRadioButton*>(button) ? QStyle::SE_RadioButtonContents
                                                    : QStyle::SE_PushButtonContents;
    return button->style()->subElementRect(element, &option, button);
}

/// Where a control shows that it has the focus: the text cursor of a field, else its middle.
QPoint placeOfFocus(const QWidget* control)
{
    return qobject_cast<const QLineEdit*>(control)
               ? control->inputMethodQuery(Qt::ImCursorRectangle).toRect().center()
               : control->rect().center();
}

QByteArray described(const QWidget* widget)
{
    return (widget->objectName() + QStringLiteral(": ") + textOf(widget)).toUtf8();
}

/// Widgets beside each other in one frame whose areas have pixels in common.
QStringList overlaps(const QWidget& window)
{
    QStringList found;
    const QList<QWidget*> widgets = window.findChildren<QWidget*>();
    for (int i = 0; i < widgets.size(); ++i) {
        for (int j = i + 1; j < widgets.size(); ++j) {
            const QWidget* a = widgets[i];
            const QWidget* b = widgets[j];
            const bool together = a->parent() == b->parent() && a->parentWidget()->layout() &&
                                  a->isVisibleTo(&window) && b->isVisibleTo(&window);
            if (together && a->geometry().intersects(b->geometry()))
                found += a->objectName() + QStringLiteral(" and ") + b->objectName();
        }
    }
    return found;
}

} // namespace

class tst_Interface : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QTranslator m_catalogue;
    QScopedPointer<Body> m_body;

    FourPs* panel() const { return m_body->findChild<FourPs*>(); }
    const ScreenScroll* scroll() const { return m_body->findChild<ScreenScroll*>(); }
    QString file(Measurement measurement) const { return m_dir.filePath(fileName(measurement)); }

    void build(bool japanese)
    {
        if (japanese)
            QApplication::installTranslator(&m_catalogue);
        m_body.reset(new Body);
    }

    /// Everything that can be seen at once: both windows, the conditions, a popped out graph. The
    /// main window is as small as it is on a screen that has room for it.
    void showAll()
    {
        panel()->DispCondsB->setChecked(true);
        m_body->show();
        QApplication::processEvents(); // lays the panel out
        m_body->resize(m_body->sizeHint());
        panel()->displays->show();
        panel()->displays->panel(Displays::DispMuts)->popDock();
        QVERIFY(QTest::qWaitForWindowExposed(m_body.data()));
        QVERIFY(QTest::qWaitForWindowExposed(panel()->displays));
        QApplication::processEvents();
    }

    QList<QWidget*> windows() const
    {
        QList<QWidget*> all = {m_body.data(), panel()->displays};
        for (const DispABase* graph : qAsConst(panel()->displays->panels))
            all.append(graph->pop.get());
        return all;
    }

    void analyseTheExample()
    {
        user::drop(panel()->RefFile1, file(Measurement::Ref1));
        user::drop(panel()->RefFile2, file(Measurement::Ref2));
        user::drop(panel()->TargetFile, file(Measurement::Target));
        user::drop(panel()->BlankFile, file(Measurement::Blank));
        for (const int row : {0, 3})
            panel()->ePoints[row]->TRatCB->setChecked(true);
        panel()->calcBoth();
    }

    static void addLanguages()
    {
        QTest::addColumn<bool>("japanese");
        QTest::newRow("Japanese") << true;
        QTest::newRow("English") << false;
    }

private slots:
    void initTestCase()
    {
        // The size of letters on most desktops.
        QFont font = QApplication::font();
        font.setPointSize(10);
        QApplication::setFont(font);
        QVERIFY(m_catalogue.load(QStringLiteral(":/velk_ja_JP.qm")));
        QCOMPARE(writeSample(m_dir.path(), MixedSample(), std::nullopt), QString());
    }
    void cleanup()
    {
        m_body.reset();
        QApplication::removeTranslator(&m_catalogue);
    }

    void noTextIsEmpty_data() { addLanguages(); }
    void noTextIsEmpty()
    {
        QFETCH(bool, japanese);
        build(japanese);
        showAll();
        int count = 0;
        for (const QWidget* window : windows()) {
            QVERIFY(!window->windowTitle().isEmpty());
            for (const QWidget* widget : textWidgets(*window)) {
                QVERIFY2(!textOf(widget).trimmed().isEmpty(), described(widget).constData());
                ++count;
            }
        }
        QVERIFY(count > 100); // eight rows of six texts alone
    }

    void onlyWhatStaysIsEnglish()
    {
        build(true);
        showAll();
        for (const QWidget* window : windows()) {
            QVERIFY(staysEnglish(window->windowTitle()));
            for (const QWidget* widget : textWidgets(*window))
                QVERIFY2(isJapanese(textOf(widget)) || staysEnglish(textOf(widget)),
                         described(widget).constData());
        }
    }

    void nothingIsJapaneseInEnglish()
    {
        build(false);
        showAll();
        for (const QWidget* window : windows())
            for (const QWidget* widget : textWidgets(*window))
                QVERIFY2(!isJapanese(textOf(widget)), described(widget).constData());
    }

    void defaultsStay()
    {
        build(true);
        const QVector<QPair<QLineEdit*, const char*>> defaults = {
            {panel()->EdgeE, "8350"}, {panel()->PreEEndDE, "-50"}, {panel()->PostEStartDE, "100"},
            {panel()->Valence1, "2"}, {panel()->Valence2, "3"},    {panel()->HgAFrom, "1.5"},
            {panel()->HgATo, "3.5"},  {panel()->HgABoxes, "41"},   {panel()->HgTFrom, "-0.2"},
            {panel()->HgTTo, "1.2"},  {panel()->HgTBoxes, "41"}};
        for (const auto& [field, text] : defaults)
            QCOMPARE(field->text(), QString::fromLatin1(text));
    }

    void axisCaptionsStay()
    {
        build(true);
        showAll();
        analyseTheExample();
        for (DispABase* graph : qAsConst(panel()->displays->panels))
            graph->DispA->grab(); // paints it, which sets its captions
        const QVector<QPair<const char*, const char*>> captions = {
            {"Eng.[eV]", "mut"}, {"Eng.[eV]", "mut"},   {"Eng.[eV]", "mut"},
            {"Eng.[eV]", "mut"}, {"LCF", "4ps"},        {"Valence", "Num."},
            {"Thick.", "Num."},  {"Valence", "Thick."}, {"M2", "M3"}};
        for (int i = 0; i < captions.size(); ++i) {
            QCOMPARE(panel()->displays->panel(i)->xTitle, QString::fromLatin1(captions[i].first));
            QCOMPARE(panel()->displays->panel(i)->yTitle, QString::fromLatin1(captions[i].second));
        }
    }

    void everyMessageIsJapanese()
    {
        build(true);
        analyseTheExample();
        user::click(panel()->TypeTMKisExact);
        user::click(panel()->CalcTargetB);
        user::click(panel()->ePoints[3]->UseCB); // three rows are left
        user::click(panel()->ePoints[1]->UseCB); // two
        user::click(panel()->WriteB);            // no path
        const QStringList lines = user::messages(*panel());
        QVERIFY(lines.size() > 20);
        for (const QString& line : lines)
            QVERIFY2(isJapanese(line), qPrintable(line));
        QVERIFY(isJapanese(panel()->CalcRes->text()));
        QVERIFY(isJapanese(panel()->LCFRes->text()));
    }

    void textsAreShownWhole_data() { addLanguages(); }
    void textsAreShownWhole()
    {
        QFETCH(bool, japanese);
        build(japanese);
        showAll();
        for (const QWidget* window : windows()) {
            for (const QWidget* widget : textWidgets(*window)) {
                const QString text = textOf(widget);
                const QSize room = roomFor(widget).size();
                const QFontMetrics metrics(widget->font());
                QVERIFY2(metrics.horizontalAdvance(text) <= room.width(),
                         described(widget).constData());
                QVERIFY2(metrics.ascent() + metrics.descent() <= widget->height(),
                         described(widget).constData());
            }
        }
    }

    void numbersAreShownWhole()
    {
        build(true);
        showAll();
        analyseTheExample();
        for (int row = 0; row < panel()->ePoints.size(); ++row)
            panel()->ePoints[row]->MapFile->FileName->setText(
                QStringLiteral("map_%1.dat").arg(row + 1));
        for (const QLineEdit* field : panel()->findChildren<QLineEdit*>()) {
            // Folders may have names of any length.
            if (!field->isVisibleTo(m_body.data()) || field->text().contains(QLatin1Char('/')))
                continue;
            // The frame and the margins that a line edit keeps from its text.
            const int room = field->width() - 8;
            QVERIFY2(field->fontMetrics().horizontalAdvance(field->text()) <= room,
                     qPrintable(field->objectName() + QStringLiteral(": ") + field->text()));
        }
    }

    void nothingOverlaps_data() { addLanguages(); }
    void nothingOverlaps()
    {
        QFETCH(bool, japanese);
        build(japanese);
        showAll();
        for (const QWidget* window : windows())
            QCOMPARE(overlaps(*window), QStringList());
    }

    void windowsFitASmallScreen_data() { addLanguages(); }
    void windowsFitASmallScreen()
    {
        QFETCH(bool, japanese);
        build(japanese);
        const QSize graphs = panel()->displays->size(); // before this screen has its say
        showAll();
        for (const QSize& size : {m_body->size(), graphs}) {
            QVERIFY2(size.width() <= smallScreen.width() && size.height() <= smallScreen.height(),
                     qPrintable(QStringLiteral("%1 x %2").arg(size.width()).arg(size.height())));
        }
    }

    void nothingIsScrolledWhereThereIsRoom_data() { addLanguages(); }
    void nothingIsScrolledWhereThereIsRoom()
    {
        QFETCH(bool, japanese);
        build(japanese);
        showAll();
        QVERIFY(scroll()->viewport()->rect().contains(scroll()->widget()->geometry()));
    }

    // The test platform's screen is smaller than the panel.
    void panelAsksForNoMoreThanTheScreen()
    {
        build(true);
        panel()->DispCondsB->setChecked(true);
        m_body->show();
        QApplication::processEvents();
        const QSize room = screenRoom(*m_body);
        QVERIFY(m_body->sizeHint().width() > room.width());
        QCOMPARE(m_body->minimumSizeHint().boundedTo(room), m_body->minimumSizeHint());
    }

    void windowsOpenNoLargerThanTheScreen()
    {
        build(true);
        m_body->show();
        panel()->displays->show();
        for (const QWidget* window :
             {static_cast<QWidget*>(m_body.data()), static_cast<QWidget*>(panel()->displays)}) {
            const QSize room = screenRoom(*window).expandedTo(window->minimumSizeHint());
            QCOMPARE(window->size().boundedTo(room), window->size());
        }
    }

    void everyControlIsReachedOnASmallScreen()
    {
        build(true);
        panel()->DispCondsB->setChecked(true);
        m_body->show();
        QVERIFY(QTest::qWaitForWindowActive(m_body.data()));
        const QRect seen = scroll()->viewport()->rect();
        QVERIFY(scroll()->widget()->height() > seen.height() ||
                scroll()->widget()->width() > seen.width());
        panel()->RefFile1->FileName->setFocus(Qt::TabFocusReason);
        QSet<QWidget*> reached;
        while (!reached.contains(QApplication::focusWidget())) {
            QWidget* control = QApplication::focusWidget();
            reached.insert(control);
            const QPoint place = placeOfFocus(control);
            QVERIFY2(seen.contains(control->mapTo(scroll(), place)),
                     qPrintable(control->objectName()));
            QTest::keyClick(control, Qt::Key_Tab);
        }
        QVERIFY(reached.size() > 80);
    }
};

QTEST_MAIN(tst_Interface)
#include "tst_Interface.moc"
