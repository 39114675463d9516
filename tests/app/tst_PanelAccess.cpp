// The panel and the graph window by keyboard and for screen readers.

#include "display/DispABase.h"
#include "tests/support/PanelActions.h"

#include <QAccessible>
#include <QClipboard>
#include <QRegularExpression>
#include <QScopedPointer>
#include <QTranslator>
#include <QtTest>

namespace
{

/// Name that a screen reader is given for a widget.
QString spokenName(QWidget* widget)
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
    return interface ? interface->text(QAccessible::Name) : QString();
}

/// Name of a control in the code; a selector's parts are named after the selector.
QString codeName(const QWidget* widget)
{
    const QString name = widget->objectName();
    const QWidget* parent = widget->parentWidget();
    return qobject_cast<const AFileSelect*>(parent) ? parent->objectName() + QLatin1Char('.') + name
                                                    : name;
}

QStringList selector(const QString& name)
{
    return {name + QStringLiteral(".FileName"), name + QStringLiteral(".SelectB"),
            name + QStringLiteral(".ClearB")};
}

QStringList names(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

/// Presses Tab until the focus is on no button of an exclusive group: at which of its buttons a
/// group is entered is the toolkit's choice.
void tabOn()
{
    const QRadioButton* radio = nullptr;
    do {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        radio = qobject_cast<const QRadioButton*>(QApplication::focusWidget());
    } while (radio && radio->autoExclusive());
}

/// The controls as the form has them from top to bottom.
QStringList formOrder()
{
    QStringList order = selector(QStringLiteral("RefFile1")) + names("Valence1") +
                        selector(QStringLiteral("RefFile2")) + names("Valence2");
    for (const char* name : {"TargetFile", "BlankFile", "DispFSelect"})
        order += selector(QString::fromLatin1(name));
    order += names("SelectedFs RemoveAFile EdgeE PreEEndDE PostEStartDE ShowDAB");
    for (int row = 1; row <= 8; ++row)
        order += names("UseCB TRatCB Energy Mut1 Mut2 MutT MutBlank") +
                 selector(QStringLiteral("MapFile"));
    order += selector(QStringLiteral("mapFileSelect"));
    order += names("CalcTargetB CalcRes LCFB LCFRes DispCondsB ShowFourPs CalcMapB");
    order += selector(QStringLiteral("SaveFSelect"));
    order += names("WriteB Message HgAFrom HgATo HgABoxes HgAAuto HgTFrom HgTTo HgTBoxes HgTAuto "
                   "UseVicCB UseVicForTargetCB");
    return order;
}

QList<QWidget*> controlsOf(const QWidget& window)
{
    QList<QWidget*> controls;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool ofTheForm = !widget->objectName().startsWith(QLatin1String("qt_"));
        if (ofTheForm && (widget->focusPolicy() & Qt::TabFocus) != 0)
            controls.append(widget);
    }
    return controls;
}

QString clipboardAfterCopy(QWidget* widget)
{
    QApplication::clipboard()->setText(QStringLiteral("nothing copied"));
    QTest::keySequence(widget, QKeySequence(QKeySequence::Copy));
    return QApplication::clipboard()->text();
}

} // namespace

class tst_PanelAccess : public QObject
{
    Q_OBJECT

private:
    QScopedPointer<FourPs> m_panel;

    void showConditions()
    {
        m_panel->DispCondsB->setChecked(true);
        m_panel->show();
        QVERIFY(QTest::qWaitForWindowActive(m_panel.data()));
    }
    QWidget* cell(int row, const char* name) const
    {
        const AEPoint* point = m_panel->ePoints[row - 1];
        const QHash<QByteArray, QWidget*> cells = {{"Use", point->UseCB},
                                                   {"V.Point", point->VPointCB},
                                                   {"Energy", point->Energy},
                                                   {"mut(Blank)", point->MutBlank},
                                                   {"2D Data", point->MapFile->FileName},
                                                   {"2D Data, Sel.", point->MapFile->SelectB}};
        return cells.value(name);
    }

private slots:
    void init() { m_panel.reset(new FourPs); }
    void cleanup() { m_panel.reset(); }

    void tabFollowsTheForm()
    {
        showConditions();
        m_panel->RefFile1->FileName->setFocus(Qt::TabFocusReason);
        const QStringList order = formOrder();
        for (const QString& name : order) {
            QVERIFY(QApplication::focusWidget());
            QCOMPARE(codeName(QApplication::focusWidget()), name);
            tabOn();
        }
        // Around once.
        QCOMPARE(codeName(QApplication::focusWidget()), order.first());
    }

    void labelsAreBuddies_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("field");
        const QVector<QPair<const char*, const char*>> pairs = {
            {"Valence1Label", "Valence1"}, {"Valence2Label", "Valence2"},
            {"EdgeELabel", "EdgeE"},       {"PreEEndDELabel", "PreEEndDE"},
            {"TargetLabel", "CalcRes"},    {"PostEStartDELabel", "PostEStartDE"},
            {"HgALabel", "HgAFrom"},       {"HgTLabel", "HgTFrom"}};
        for (const auto& [label, field] : pairs)
            QTest::newRow(label) << QString::fromLatin1(label) << QString::fromLatin1(field);
    }
    void labelsAreBuddies()
    {
        QFETCH(QString, label);
        QFETCH(QString, field);
        const auto* widget = m_panel->findChild<QLabel*>(label);
        QVERIFY(widget && widget->buddy());
        QCOMPARE(widget->buddy()->objectName(), field);
    }

    void selectorsLabelNamesItsLine()
    {
        QCOMPARE(m_panel->RefFile1->Label->buddy(), m_panel->RefFile1->FileName);
    }

    void cellsAreNamedByRowAndColumn_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("cell");
        QTest::addColumn<QString>("name");
        QTest::newRow("use") << 1 << QByteArray("Use") << QStringLiteral("No. 1, Use");
        QTest::newRow("V") << 2 << QByteArray("V.Point") << QStringLiteral("No. 2, V.Point");
        QTest::newRow("energy") << 3 << QByteArray("Energy") << QStringLiteral("No. 3, Energy[eV]");
        QTest::newRow("blank") << 8 << QByteArray("mut(Blank)")
                               << QStringLiteral("No. 8, mut(Blank)");
        QTest::newRow("map") << 4 << QByteArray("2D Data") << QStringLiteral("No. 4, 2D Data");
        QTest::newRow("map's button")
            << 4 << QByteArray("2D Data, Sel.") << QStringLiteral("No. 4, 2D Data, Sel.");
    }
    void cellsAreNamedByRowAndColumn()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, cell);
        QFETCH(QString, name);
        QCOMPARE(spokenName(this->cell(row, cell.constData())), name);
    }

    void namesAreInTheWindowsLanguage()
    {
        QTranslator catalogue;
        QVERIFY(catalogue.load(QStringLiteral(":/velk_ja_JP.qm")));
        QApplication::installTranslator(&catalogue);
        m_panel.reset(new FourPs);
        QCOMPARE(spokenName(cell(3, "Energy")), QStringLiteral("番号 3, エネルギー[eV]"));
        QCOMPARE(spokenName(m_panel->RefFile2->ClearB), QStringLiteral("参照試料 2, クリア"));
        QCOMPARE(spokenName(m_panel->displays->panel(Displays::DispMuts)->DispA),
                 QStringLiteral("すべての μt"));
    }

    void everyNameIsJapanese()
    {
        QTranslator catalogue;
        QVERIFY(catalogue.load(QStringLiteral(":/velk_ja_JP.qm")));
        QApplication::installTranslator(&catalogue);
        m_panel.reset(new FourPs);
        m_panel->CConds->show();
        static const QRegularExpression japanese(
            QStringLiteral("[\\p{Hiragana}\\p{Katakana}\\p{Han}]"));
        // Names of methods, the same in both languages.
        static const QRegularExpression stays(QStringLiteral("^(LCF$|M2/M3)"));
        for (const QWidget* window :
             {static_cast<QWidget*>(m_panel.data()), static_cast<QWidget*>(m_panel->displays)}) {
            for (QWidget* control : controlsOf(*window)) {
                const QString name = spokenName(control);
                QVERIFY2(name.contains(japanese) || name.contains(stays), qPrintable(name));
            }
        }
    }

    void everyControlHasANameOfItsOwn()
    {
        m_panel->CConds->show();
        QHash<QString, QString> owners;
        for (const QWidget* window :
             {static_cast<QWidget*>(m_panel.data()), static_cast<QWidget*>(m_panel->displays)}) {
            for (QWidget* control : controlsOf(*window)) {
                const QString name = spokenName(control);
                const QString owner = codeName(control);
                QVERIFY2(!name.trimmed().isEmpty(), qPrintable(owner));
                QVERIFY2(!owners.contains(name),
                         qPrintable(owner + QStringLiteral(" and ") + owners.value(name)));
                owners.insert(name, owner);
            }
        }
        // Ten boxes and fields a row alone.
        QVERIFY(owners.size() > 80);
    }

    // Two boxes have the same text: only their rows tell them apart.
    void choicesAreNamedByTheirRow()
    {
        QCOMPARE(spokenName(m_panel->UseVicCB), QStringLiteral("mut type of References, Use Vic"));
        QCOMPARE(spokenName(m_panel->UseVicForTargetCB), QStringLiteral("of Target, Use Vic"));
        QCOMPARE(spokenName(m_panel->TypeTMKisExact),
                 QStringLiteral("Calc Type for t, mu0, and k :, Exact 4 points"));
        QCOMPARE(spokenName(m_panel->NByEJ),
                 QStringLiteral("When drawing all mut, Normalized by edge jump"));
    }

    void canvasesAreNamedAfterTheirPanels()
    {
        const QStringList titles = {
            QStringLiteral("Ref1"),          QStringLiteral("Ref2"),
            QStringLiteral("Target"),        QStringLiteral("Muts"),
            QStringLiteral("LCF vs 4PS"),    QStringLiteral("Histgram of a"),
            QStringLiteral("Histgram of t"), QStringLiteral("t/a"),
            QStringLiteral("M2/M3")};
        for (int i = 0; i < titles.size(); ++i)
            QCOMPARE(spokenName(m_panel->displays->panel(i)->DispA), titles[i]);
    }

    void lightFieldsHaveBlackTextOnADarkDesktop()
    {
        const QPalette before = QApplication::palette();
        QPalette dark = before;
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::Text, Qt::white);
        QApplication::setPalette(dark);
        m_panel.reset(new FourPs);
        int light = 0;
        for (QWidget* field : m_panel->findChildren<QWidget*>()) {
            if (!field->styleSheet().startsWith(QStringLiteral("background-color: rgb(255")))
                continue;
            field->ensurePolished();
            QCOMPARE(field->palette().color(QPalette::Text), QColor(Qt::black));
            ++light;
        }
        QCOMPARE(m_panel->EdgeE->palette().color(QPalette::Text), QColor(Qt::white));
        QApplication::setPalette(before);
        QCOMPARE(light, 18); // 7 and 8 selectors, two results, the messages
    }

    void resultsAreCopiedByKeyboard()
    {
        showConditions();
        m_panel->LCFRes->setText(QStringLiteral("a result"));
        for (QLineEdit* field : {m_panel->CalcRes, m_panel->LCFRes}) {
            field->setText(QStringLiteral("a result"));
            field->setFocus();
            QTest::keySequence(field, QKeySequence(QKeySequence::SelectAll));
            QCOMPARE(clipboardAfterCopy(field), QStringLiteral("a result"));
        }
    }

    void lastMessageIsCopiedByKeyboard()
    {
        showConditions();
        m_panel->appendMessage(QStringLiteral("the last line"));
        m_panel->Message->setFocus();
        QTest::keyClick(m_panel->Message, Qt::Key_Up);
        QTest::keyClick(m_panel->Message, Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(clipboardAfterCopy(m_panel->Message), QStringLiteral("the last line"));
    }

    void messagesStayInOrderAfterReading()
    {
        showConditions();
        m_panel->appendMessage(QStringLiteral("first"));
        m_panel->Message->setFocus();
        QTest::keyClick(m_panel->Message, Qt::Key_Home, Qt::ControlModifier);
        m_panel->appendMessage(QStringLiteral("second"));
        const QStringList lines = user::messages(*m_panel);
        QCOMPARE(lines.mid(lines.size() - 2), names("first second"));
    }
};

QTEST_MAIN(tst_PanelAccess)
#include "tst_PanelAccess.moc"
