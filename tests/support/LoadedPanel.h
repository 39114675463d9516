#pragma once

#include "app/FourPs.h"
#include "examples/MixedSampleFiles.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/GraphFiles.h"

#include <QTemporaryDir>

/// The panel with the example's four spectra, two display-only ones and, on request, a small map of
/// known mixtures; its graph window of 1200 x 900 pixels is shown.
class LoadedPanel
{
public:
    explicit LoadedPanel(bool withMap = true)
    {
        const QString refusal = writeSample(m_dir.path(), MixedSample(), std::nullopt);
        if (!refusal.isEmpty())
            qFatal("%s", qPrintable(refusal));
        for (const int i : {0, 1, 3})
            m_panel.ePoints[i]->TRatCB->setChecked(true);
        m_panel.RefFile1->setFile(file("ref1.dat"));
        m_panel.RefFile2->setFile(file("ref2.dat"));
        m_panel.BlankFile->setFile(file("blank.dat"));
        m_panel.TargetFile->setFile(file("target.dat"));
        m_panel.receiveNewDispFiles({file("ref1.dat"), file("target.dat")});
        if (withMap)
            loadMap();
        m_panel.displays->resize(1200, 900);
        m_panel.displays->show();
        m_panel.displays->resize(1100, 720); // of one size on every screen
        QCoreApplication::processEvents();
    }

    FourPs& panel() { return m_panel; }
    DispABase* graph(int position) const { return m_panel.displays->panel(position); }
    DispArea* area(int position) const { return graph(position)->DispA; }
    QImage picture(int position) const { return canvas::picture(area(position)); }
    QString file(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

private:
    void loadMap()
    {
        for (int row = 0; row < 4; ++row) {
            const double energy = m_panel.ePoints[row]->energy();
            const QString path = m_dir.filePath(QStringLiteral("map_%1.dat").arg(row));
            writeMapFile(path, energy, 30, 20);
            m_panel.ePoints[row]->MapFile->setFile(path);
        }
        m_panel.calcMap();
    }

    QTemporaryDir m_dir;
    FourPs m_panel;
};
