#include "app/FourPs.h"
#include "display/DispABase.h"
#include "display/DispArea.h"
#include "input/AXafsFileSelect.h"
#include "tests/model/PanelSession.h"
#include "tests/support/PanelActions.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputMethodEvent>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

// What the person of a random session does.
using literal::PanelModel;

PanelSession::Act PanelSession::chooseAct()
{
    static const struct {
        int weight;
        Act act;
    } table[] = {{10, &PanelSession::dropSpectrum},
                 {10, &PanelSession::dropImage},
                 {5, &PanelSession::chooseInDialog},
                 {4, &PanelSession::chooseImages},
                 {3, &PanelSession::chooseDisplayFiles},
                 {2, &PanelSession::selectDisplayFile},
                 {4, &PanelSession::clearSelector},
                 {18, &PanelSession::clickRow},
                 {12, &PanelSession::clickOption},
                 {8, &PanelSession::pushButton},
                 {6, &PanelSession::writeResults},
                 {8, &PanelSession::typeEnergy},
                 {4, &PanelSession::typeEdge},
                 {6, &PanelSession::typeSetting},
                 {4, &PanelSession::typeMut},
                 {8, &PanelSession::dragLine},
                 {3, &PanelSession::showGraphs}};
    int total = 0;
    for (const auto& entry : table)
        total += entry.weight;
    int choice = below(total);
    for (const auto& entry : table) {
        choice -= entry.weight;
        if (choice < 0)
            return entry.act;
    }
    return &PanelSession::showGraphs;
}

/// Most people begin with the four spectra and the images, and some of them with the options.
void PanelSession::setUp(bool everything)
{
    if (everything || chance(80)) {
        const char* const names[] = {"RefFile1", "RefFile2", "TargetFile", "BlankFile"};
        for (int i = 0; i < 4; ++i)
            dropOn(QLatin1String(names[i]), m_files.spectra.at(i));
    }
    if (everything || chance(60)) {
        for (int row = 1; row <= 8; ++row)
            dropOn(PanelModel::inRow(row, "2d"), m_files.images.at(row - 1));
    }
    if (everything || chance(80))
        click(QStringLiteral("DispCondsB"));
    if (!everything && chance(30))
        click(QStringLiteral("TypeTMKisExact"));
    compare();
}

void PanelSession::dropOn(const QString& selector, const QString& path)
{
    act(QStringLiteral("drop %1 on %2").arg(path, selector));
    user::drop(m_selectors.value(selector), path);
    m_model.giveFile(selector, path);
}

void PanelSession::dropSpectrum()
{
    static const QStringList names{QStringLiteral("RefFile1"), QStringLiteral("RefFile2"),
                                   QStringLiteral("TargetFile"), QStringLiteral("BlankFile")};
    dropOn(chance(97) ? anyOf(names) : QStringLiteral("DispFSelect"),
           anyOf(chance(95) ? m_files.spectra : m_files.images));
}

void PanelSession::dropImage()
{
    dropOn(chance(97) ? anyRow("2d") : QStringLiteral("mapFileSelect"),
           anyOf(chance(95) ? m_files.images : m_files.spectra));
}

void PanelSession::chooseInDialog()
{
    const QString selector = anyOf(m_selectors.keys());
    const bool save = selector == QStringLiteral("SaveFSelect");
    const bool image = selector.endsWith(QStringLiteral("2d"));
    QString path = anyOf(save ? m_files.targets : image ? m_files.images : m_files.spectra);
    if (path.isEmpty())
        path = m_folder + QStringLiteral("/out/chosen");
    act(QStringLiteral("choose %1 for %2 in the dialog").arg(path, selector));
    QFileDialog* dialog = m_selectors.value(selector)->dialog();
    // The dialog reports a single file both ways, the list first.
    emit dialog->filesSelected({path});
    emit dialog->fileSelected(path);
    if (!save)
        m_model.giveFiles(selector, {path});
    m_model.giveFile(selector, path);
}

void PanelSession::chooseImages()
{
    QStringList paths;
    for (int i = 2 + below(9); i > 0; --i)
        paths.append(anyOf(m_files.images));
    act(QStringLiteral("choose 2D data %1").arg(paths.join(QLatin1Char(' '))));
    emit m_panel->mapFileSelect->dialog()->filesSelected(paths);
    m_model.giveFiles(QStringLiteral("mapFileSelect"), paths);
}

void PanelSession::chooseDisplayFiles()
{
    QStringList paths;
    for (int i = 2 + below(3); i > 0; --i)
        paths.append(anyOf(m_files.spectra));
    act(QStringLiteral("choose display files %1").arg(paths.join(QLatin1Char(' '))));
    emit m_panel->DispFSelect->dialog()->filesSelected(paths);
    m_model.giveFiles(QStringLiteral("DispFSelect"), paths);
}

void PanelSession::selectDisplayFile()
{
    if (m_model.displayFiles.isEmpty())
        return;
    const int index = below(m_model.displayFiles.size());
    act(QStringLiteral("show display file %1").arg(index));
    m_panel->SelectedFs->setCurrentIndex(index);
    m_model.selectDisplayFile(index);
}

void PanelSession::clearSelector()
{
    const QString selector = anyOf(m_selectors.keys());
    act(QStringLiteral("clear %1").arg(selector));
    user::click(m_selectors.value(selector)->ClearB);
    m_model.clearFile(selector);
}

void PanelSession::click(const QString& name)
{
    act(QStringLiteral("click %1").arg(name));
    user::click(m_buttons.value(name));
    m_model.click(name);
}

void PanelSession::clickRow()
{
    const int choice = below(10);
    if (choice < 5)
        click(anyRow("use"));
    else if (choice < 8)
        click(anyRow("tratio"));
    else
        click(anyRow("vpoint"));
}

void PanelSession::clickOption()
{
    static const QStringList names{
        QStringLiteral("TRSbyS"),         QStringLiteral("TRMean"),
        QStringLiteral("TRLSquare"),      QStringLiteral("TRLSquareNB"),
        QStringLiteral("TRVic2"),         QStringLiteral("UseVicCB"),
        QStringLiteral("UseVicCB"),       QStringLiteral("UseVicForTargetCB"),
        QStringLiteral("TheVicIs1"),      QStringLiteral("TheVicIs2"),
        QStringLiteral("TypeTMKisExact"), QStringLiteral("TypeTMKisLS"),
        QStringLiteral("NNone"),          QStringLiteral("NBySubPre"),
        QStringLiteral("NByEJ"),          QStringLiteral("NBy2Vics"),
        QStringLiteral("HgAAuto"),        QStringLiteral("HgTAuto"),
        QStringLiteral("DispCondsB"),     QStringLiteral("ShowFourPs")};
    click(anyOf(names));
}

void PanelSession::pushButton()
{
    static const QStringList names{QStringLiteral("CalcTargetB"), QStringLiteral("CalcMapB"),
                                   QStringLiteral("LCFB"), QStringLiteral("RemoveAFile")};
    click(anyOf(names));
}

void PanelSession::writeResults()
{
    const QString target = anyOf(m_files.targets);
    if (chance(50))
        typeInto(QStringLiteral("SaveFSelect"), target);
    // A histogram file is written only where one is already.
    const QFileInfo info(m_model.texts.value(QStringLiteral("SaveFSelect")));
    for (const char* tag : {"HGAlpha", "HGThick"}) {
        if (!chance(30) || !info.dir().exists() || !info.path().startsWith(m_folder))
            continue;
        QFile file(info.path() + QLatin1Char('/') + info.completeBaseName() + QLatin1Char('_') +
                   QLatin1String(tag) + QLatin1Char('.') + info.suffix());
        if (file.open(QIODevice::WriteOnly))
            file.write("earlier");
    }
    push(QStringLiteral("WriteB"));
}

QString PanelSession::oddText()
{
    static const QStringList texts{QString(),
                                   QStringLiteral("nan"),
                                   QStringLiteral("inf"),
                                   QStringLiteral("-inf"),
                                   QStringLiteral("1e308"),
                                   QStringLiteral("-1e308"),
                                   QStringLiteral("text"),
                                   QStringLiteral("1,5"),
                                   QStringLiteral(" 8400 "),
                                   QStringLiteral("0x10"),
                                   QStringLiteral("1e-320"),
                                   QStringLiteral("+3"),
                                   QStringLiteral("0"),
                                   QStringLiteral("-5"),
                                   QStringLiteral("1e999"),
                                   QStringLiteral("%1"),
                                   QStringLiteral("8 400")};
    return anyOf(texts);
}

void PanelSession::typeInto(const QString& name, const QString& text)
{
    act(QStringLiteral("type \"%1\" into %2").arg(text, name));
    QLineEdit* edit = m_edits.value(name);
    QTest::mouseClick(edit, Qt::LeftButton);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    constexpr int longestTyped = 100;
    if (text == QString::fromLatin1(text.toLatin1()) && text.size() <= longestTyped) {
        QTest::keyClicks(edit, text);
    } else { // as an input method hands it over
        QInputMethodEvent composed;
        composed.setCommitString(text);
        QApplication::sendEvent(edit, &composed);
    }
    if (chance(70))
        QTest::keyClick(edit, chance(50) ? Qt::Key_Return : Qt::Key_Tab);
}

void PanelSession::typeEnergy()
{
    const double energy = 8100 + below(7000) / 10.0;
    typeInto(anyRow("energy"), chance(85) ? QString::number(energy) : oddText());
}

void PanelSession::typeEdge()
{
    static const QStringList names{QStringLiteral("EdgeE"), QStringLiteral("PreEEndDE"),
                                   QStringLiteral("PostEStartDE")};
    const int choice = below(3);
    const int centres[] = {8345, -40, 80};
    const int value = centres[choice] + below(60) - 30;
    typeInto(names.at(choice), chance(85) ? QString::number(value) : oddText());
}

void PanelSession::typeSetting()
{
    static const QStringList names{
        QStringLiteral("Valence1"), QStringLiteral("Valence2"), QStringLiteral("HgAFrom"),
        QStringLiteral("HgATo"),    QStringLiteral("HgABoxes"), QStringLiteral("HgTFrom"),
        QStringLiteral("HgTTo"),    QStringLiteral("HgTBoxes"), QStringLiteral("CalcRes")};
    const QString name = anyOf(names);
    const bool boxes = name.endsWith(QStringLiteral("Boxes"));
    const QString number =
        boxes ? QString::number(below(60) / 1.5) : QString::number(below(100) / 20.0 - 1);
    // No count of boxes here that would take all memory.
    typeInto(name, chance(80) ? number : boxes ? QStringLiteral("-1e308") : oddText());
}

void PanelSession::typeMut()
{
    static const char* const columns[] = {"mut1", "mut2", "mutT", "mutBlank"};
    typeInto(anyRow(columns[below(4)]),
             chance(85) ? QString::number(below(3000) / 1000.0) : oddText());
}

void PanelSession::mouse(QWidget* widget, int type, QPoint at, Qt::MouseButtons held)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(static_cast<QEvent::Type>(type), at, widget->mapToGlobal(at), button, held,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void PanelSession::dragLine()
{
    const int graph = below(4);
    m_panel->displays->show();
    m_panel->displays->grab();
    DispArea* canvas = m_panel->displays->panel(graph)->DispA;
    const ChCoord& coord = canvas->coord;
    const literal::XAxis axis{coord.rx0, coord.rx1, coord.px0, coord.px1};
    int x = below(canvas->width());
    if (chance(70)) {
        const QString line = graph == 3 && chance(70) ? anyRow("energy") : QStringLiteral("EdgeE");
        const double near = coord.xToScreen(m_model.texts.value(line).toDouble());
        if (std::fabs(near) < 4000)
            x = static_cast<int>(near) + below(21) - 10;
    }
    QVector<int> pixels{x};
    for (int i = below(4); i > 0; --i)
        pixels.append(x += below(41) - 20);
    act(QStringLiteral("drag on graph %1 from pixel %2 to %3").arg(graph).arg(pixels[0]).arg(x));
    const int y = below(canvas->height());
    mouse(canvas, QEvent::MouseButtonPress, {pixels.first(), y}, Qt::LeftButton);
    for (const int pixel : pixels.mid(1))
        mouse(canvas, QEvent::MouseMove, {pixel, y}, Qt::LeftButton);
    mouse(canvas, QEvent::MouseButtonRelease, {pixels.last(), y}, Qt::NoButton);
    m_drags += m_model.drag(graph == 3, axis, pixels) ? 1 : 0;
}

void PanelSession::showGraphs()
{
    m_panel->displays->show();
    m_panel->displays->grab();
    DispArea* canvas = m_panel->displays->panel(below(8))->DispA;
    const QPoint at(below(canvas->width()), below(canvas->height()));
    act(QStringLiteral("zoom a graph"));
    mouse(canvas, QEvent::MouseMove, at, Qt::NoButton);
    QWheelEvent wheel(at, canvas->mapToGlobal(at), {}, {0, chance(50) ? 120 : -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(canvas, &wheel);
    if (chance(40))
        mouse(canvas, QEvent::MouseButtonDblClick, at, Qt::LeftButton);
    m_panel->displays->grab();
}
