#include "tests/monkey/TwinPanel.h"

#include "display/PopBase.h"
#include "input/AEPoint.h"
#include "input/AXafsData.h"
#include "input/AXafsFileSelect.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/PanelActions.h"

#include <QFile>
#include <QFileInfo>

#include <cstring>

namespace
{

bool sameBits(const PixelArray<double>& x, const PixelArray<double>& y)
{
    return x.size() == y.size() &&
           (x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Each graph in its own range, all in a window of one size.
void showWhole(FourPs& panel)
{
    for (DispABase* graph : qAsConst(panel.displays->panels)) {
        if (!graph->docked)
            graph->pop->close();
        graph->DispA->rangeSet = false; // a double click would take hold of a line there
    }
    panel.displays->showNormal();
    panel.displays->resize(1100, 720);
    QCoreApplication::processEvents();
}

} // namespace

GivenMaps::GivenMaps(const FourPs& panel) : m_files(panel.ePoints.size())
{
    for (int row = 0; row < panel.ePoints.size(); ++row) {
        const AFileSelect* select = panel.ePoints[row]->MapFile;
        QObject::connect(select, &AFileSelect::newFilePath, select,
                         [this, row](const QString& path) {
                             QStringList& files = m_files[row];
                             if (QFileInfo(path).isFile())
                                 files.clear();
                             else if (files.size() > 1)
                                 files.removeLast();
                             files.append(path);
                         });
    }
}

TwinPanel::TwinPanel(FourPs& used, const GivenMaps& maps) : m_used(used)
{
    giveFiles(maps);
    giveButtons();
    giveTexts();
}

void TwinPanel::giveFiles(const GivenMaps& maps)
{
    for (int i = 0; i < m_used.xafsSelects.size(); ++i) {
        if (const AXafsData* data = m_used.xafsSelects[i]->data())
            m_fresh.xafsSelects[i]->setFile(data->fileName);
    }
    for (int row = 0; row < m_used.ePoints.size(); ++row) {
        if (m_used.ePoints[row]->mapPath().isEmpty())
            continue; // nothing was there, or a job has forgotten it
        for (const QString& path : maps.ofRow(row))
            m_fresh.ePoints[row]->MapFile->setFile(path);
    }
    QStringList displayOnly;
    for (int i = 0; i < m_used.SelectedFs->count(); ++i)
        displayOnly.append(m_used.SelectedFs->itemText(i));
    m_fresh.receiveNewDispFiles(displayOnly);
    m_fresh.SelectedFs->setCurrentIndex(m_used.SelectedFs->currentIndex());
}

void TwinPanel::giveButtons()
{
    const auto used = controlsOf<QAbstractButton>(m_used);
    const auto fresh = controlsOf<QAbstractButton>(m_fresh);
    expectSame(QStringLiteral("number of buttons"), QString::number(used.size()),
               QString::number(fresh.size()));
    for (int i = 0; i < qMin(used.size(), fresh.size()); ++i) {
        expectSame(QStringLiteral("button"), used[i]->objectName(), fresh[i]->objectName());
        if (fresh[i]->isCheckable() && fresh[i]->isChecked() != used[i]->isChecked())
            fresh[i]->click();
    }
}

void TwinPanel::giveTexts()
{
    const auto used = controlsOf<QLineEdit>(m_used);
    const auto fresh = controlsOf<QLineEdit>(m_fresh);
    expectSame(QStringLiteral("number of fields"), QString::number(used.size()),
               QString::number(fresh.size()));
    for (int i = 0; i < qMin(used.size(), fresh.size()); ++i)
        fresh[i]->setText(used[i]->text());
    // What stands in the fields of the edge counts when they are left.
    const FourPs* const both[] = {&m_used, &m_fresh};
    for (const FourPs* panel : both)
        QTest::keyClick(panel->EdgeE, Qt::Key_Return);
}

QString TwinPanel::difference(const QString& folder)
{
    m_calculated = true;
    compareTexts();
    if (m_calculated) {
        compareMaps(folder);
        compareGraphs();
    }
    return m_differences.join(QLatin1Char('\n'));
}

void TwinPanel::compareTexts()
{
    const int linesUsed = user::messages(m_used).size();
    const int linesFresh = user::messages(m_fresh).size();
    QObject listening;
    QObject::connect(&m_used, &FourPs::refused, &listening, [this] { m_calculated = false; });
    const FourPs* const both[] = {&m_used, &m_fresh};
    for (const FourPs* panel : both) {
        for (QPushButton* button : {panel->CalcTargetB, panel->CalcMapB, panel->LCFB})
            button->click();
    }
    expectSame(QStringLiteral("messages"),
               user::messagesSince(m_used, linesUsed).join(QLatin1Char('\n')),
               user::messagesSince(m_fresh, linesFresh).join(QLatin1Char('\n')));
    if (!m_calculated)
        return; // a result of earlier settings stays where the last calculation was refused
    expectSame(QStringLiteral("result"), m_used.CalcRes->text(), m_fresh.CalcRes->text());
    expectSame(QStringLiteral("fit"), m_used.LCFRes->text(), m_fresh.LCFRes->text());
}

void TwinPanel::compareMaps(const QString& folder)
{
    const MapResults& used = m_used.lastMap();
    const MapResults& fresh = m_fresh.lastMap();
    if (!sameBits(used.a, fresh.a) || !sameBits(used.t, fresh.t))
        m_differences.append(QStringLiteral("the maps differ"));
    const QString file = folder + QStringLiteral("/twin.dat");
    m_used.SaveFSelect->FileName->setText(file);
    m_used.WriteB->click();
    const QByteArray ofUsed = contentOf(file);
    m_fresh.SaveFSelect->FileName->setText(file);
    m_fresh.WriteB->click();
    if (ofUsed.isEmpty() != used.a.empty() || ofUsed != contentOf(file))
        m_differences.append(QStringLiteral("the result files differ"));
}

void TwinPanel::compareGraphs()
{
    showWhole(m_used);
    showWhole(m_fresh);
    for (int i = 0; i < m_used.displays->panels.size(); ++i) {
        DispABase* used = m_used.displays->panel(i);
        if (i == Displays::DispLCFvs4PS || used->isHidden())
            continue; // the points are of earlier results; what is in no window has no size
        if (canvas::picture(used->DispA) != canvas::picture(m_fresh.displays->panel(i)->DispA))
            m_differences.append(QStringLiteral("the graphs differ: ") + used->Title->text());
    }
}

void TwinPanel::expectSame(const QString& what, const QString& used, const QString& fresh)
{
    if (used != fresh)
        m_differences.append(
            QStringLiteral("%1: \"%2\", in a fresh panel \"%3\"").arg(what, used, fresh));
}
