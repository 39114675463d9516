#include "app/FourPs.h"

#include "analysis/LinearCombinationFit.h"
#include "analysis/MapSummary.h"
#include "app/FileQuestion.h"
#include "app/GraphMenu.h"
#include "app/GuideWindow.h"
#include "app/JobMenu.h"
#include "app/Language.h"
#include "app/MapWindow.h"
#include "app/PanelAccess.h"
#include "app/ResultsMenu.h"
#include "app/ScreenScroll.h"
#include "display/DispABase.h"
#include "display/MarkLine.h"
#include "display/MarkLines.h"
#include "input/AEPoint.h"
#include "input/AXafsData.h"
#include "input/LightField.h"
#include "results/Histgram.h"

#include <QAction>
#include <QButtonGroup>
#include <QCoreApplication>
#include <QDir>
#include <QVBoxLayout>

namespace
{

constexpr int pointCount = static_cast<int>(pointTableRows);
constexpr int pointsUsedAtStart = 4;

/// Places of the graph panels in Displays.
constexpr int mutsPanel = 3;
constexpr int lcfPanel = 4;

} // namespace

FourPs::FourPs(QWidget* parent) : QFrame(parent)
{
    setupUi(this);
    for (QWidget* field : {static_cast<QWidget*>(CalcRes), static_cast<QWidget*>(LCFRes),
                           static_cast<QWidget*>(Message)})
        setBlackText(*field);
    buildSelectors();
    buildDisplays();
    buildThicknessGroup();
    connectGraphWindow();
    buildPoints();
    buildPointTable();
    buildHistograms();
    setDefaultPoints();
    setEdge();
    connectInputs();
    applyConditions();
    connectConditions();
    buildMarkLines();
    buildMenus();
    receiveNewDir(QDir::currentPath());
    putInScrollArea();
    nameControls(*this);
    orderTabs(*this);
    enterMarkedPoint(*this);
}

FourPs::~FourPs()
{
    // Hiding takes the keyboard from a field; what follows from that needs the panel whole.
    hide();
    m_mapWindow.reset();
    // The window without a parent, and rows whose widgets live in the table.
    delete displays;
    qDeleteAll(ePoints);
}

void FourPs::buildSelectors()
{
    xafsSelects = {RefFile1, RefFile2, TargetFile, BlankFile};
    DispFSelect->Label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    DispFSelect->setMulti(true);
    DispFSelect->setMode(AFileSelect::Open);
    mapFileSelect = new AFileSelect;
    mapFileSelect->setObjectName(QStringLiteral("mapFileSelect"));
    mapFileSelect->setMulti(true);
    mapFileSelect->setMode(AFileSelect::Open);
}

void FourPs::buildDisplays()
{
    displays = new Displays;
    for (const auto i : {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Target})
        xafsSelects[i]->setPreview(displays->panel(i));
}

void FourPs::buildThicknessGroup()
{
    trGroup = std::make_unique<QButtonGroup>();
    for (QRadioButton* button : {TRSbyS, TRMean, TRLSquare, TRLSquareNB, TRVic2})
        trGroup->addButton(button);
}

void FourPs::connectGraphWindow()
{
    connect(trGroup.get(), &QButtonGroup::idClicked, this, &FourPs::calcBoth);
    connect(ShowDAB, &QPushButton::clicked, displays, &Displays::show);
    connect(displays, &Displays::draw, this, &FourPs::draw);
    connect(displays->panel(lcfPanel), &DispABase::mDClicked, this, &FourPs::clearLCFvs4PS);
    SaveFSelect->setMode(AFileSelect::Save);
    connect(WriteB, &QPushButton::clicked, this, &FourPs::calcAndWrite);
}

void FourPs::buildPoints()
{
    for (int i = 1; i <= pointCount; ++i) {
        auto* point = new AEPoint;
        point->setObjectName(QStringLiteral("ePoint%1").arg(i));
        point->Label->setText(QStringLiteral("%1:  ").arg(i));
        connect(point, &AEPoint::newDir, this, &FourPs::receiveNewDir);
        connect(point, &AEPoint::newEnergy, this,
                [this, point](double energy) { receiveNewEnergy(point, energy); });
        connect(point, &AEPoint::changedCB, this, &FourPs::calcBoth);
        connect(point, &AEPoint::refusedData, this, &FourPs::refuse);
        connect(point, &AEPoint::unread, this, &FourPs::unread);
        connect(point, &AEPoint::progress, this, &FourPs::progress);
        point->shareKnownPositions(m_knownPositions);
        point->UseCB->setChecked(i <= pointsUsedAtStart);
        ePoints.append(point);
    }
}

void FourPs::buildPointTable()
{
    const QStringList titles = {
        tr("No."),        tr("Use"),        tr("T.Ratio."),    tr("V.Point"),    tr("Energy[eV]"),
        tr("mut(Ref.1)"), tr("mut(Ref.2)"), tr("mut(Target)"), tr("mut(Blank)"), tr("2D Data")};
    for (int column = 0; column < titles.size(); ++column)
        CLayout->addWidget(new QLabel(titles[column], FourPsFiles), 0, column);
    for (int i = 0; i < pointCount; ++i) {
        AEPoint* point = ePoints[i];
        const QList<QWidget*> cells = {new QLabel(QStringLiteral("%1").arg(i + 1, 2), FourPsFiles),
                                       point->UseCB,
                                       point->TRatCB,
                                       point->VPointCB,
                                       point->Energy,
                                       point->Mut1,
                                       point->Mut2,
                                       point->MutT,
                                       point->MutBlank,
                                       point->MapFile};
        for (int column = 0; column < cells.size(); ++column)
            CLayout->addWidget(cells[column], i + 1, column);
    }
    CLayout->addWidget(mapFileSelect, pointCount + 1, titles.size() - 1);
    CLayout->setColumnStretch(titles.size() - 1, 1);
}

void FourPs::buildHistograms()
{
    histA = std::make_unique<Histgram>(HgAFrom, HgATo, HgABoxes, HgAAuto);
    histT = std::make_unique<Histgram>(HgTFrom, HgTTo, HgTBoxes, HgTAuto);
}

void FourPs::setDefaultPoints()
{
    ePoints[2]->VPointCB->setChecked(true);
    const QStringList energies = {QStringLiteral("8313"), QStringLiteral("8381"),
                                  QStringLiteral("8390"), QStringLiteral("8404.5"),
                                  QStringLiteral("8460"), QStringLiteral("8475")};
    for (int i = 0; i < energies.size(); ++i)
        ePoints[i]->Energy->setText(energies[i]);
}

void FourPs::connectInputs()
{
    for (QLineEdit* edit : {PreEEndDE, EdgeE, PostEStartDE})
        connect(edit, &QLineEdit::editingFinished, this, &FourPs::setEdge);
    for (const auto i :
         {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Target, SpectrumSet::Blank}) {
        const AXafsFileSelect* select = xafsSelects[i];
        connect(select, &AFileSelect::newDir, this, &FourPs::receiveNewDir);
        connect(select, &AFileSelect::newFilePath, this,
                [this, i](const QString& path) { receiveNewFile(i, path); });
        connect(select, &AXafsFileSelect::refusedData, this, &FourPs::refuse);
        connect(select, &AXafsFileSelect::unread, this, &FourPs::unread);
    }
    connect(DispFSelect, &AFileSelect::newDir, this, &FourPs::receiveNewDir);
    connect(DispFSelect, &AFileSelect::newFilePaths, this, &FourPs::receiveNewDispFiles);
    connect(mapFileSelect, &AFileSelect::newDir, this, &FourPs::receiveNewDir);
    connect(mapFileSelect, &AFileSelect::newFilePaths, this, &FourPs::receiveNewPaths);
}

void FourPs::applyConditions()
{
    changedUseVic(UseVicCB->isChecked());
    changedUsingVicIs1(TheVicIs1->isChecked());
    changedUseVicForTarget(UseVicForTargetCB->isChecked());
}

void FourPs::connectConditions()
{
    connect(CalcTargetB, &QPushButton::clicked, this, &FourPs::calcTarget);
    connect(CalcMapB, &QPushButton::clicked, this, &FourPs::calcMap);
    connect(UseVicCB, &QCheckBox::toggled, this, &FourPs::changedUseVic);
    connect(UseVicForTargetCB, &QCheckBox::toggled, this, &FourPs::changedUseVicForTarget);
    connect(TheVicIs1, &QRadioButton::toggled, this, &FourPs::changedUsingVicIs1);
    for (QRadioButton* button : {NNone, NBySubPre, NByEJ, NBy2Vics})
        connect(button, &QRadioButton::toggled, this, &FourPs::repaintDisplays);
    connect(SelectedFs, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &FourPs::repaintDisplays);
    connect(RemoveAFile, &QPushButton::clicked, this, &FourPs::removeAFile);
    connect(LCFB, &QPushButton::clicked, this, &FourPs::lcf);
    CConds->setVisible(DispCondsB->isChecked());
    connect(DispCondsB, &QCheckBox::toggled, this, &FourPs::dispCalcConditions);
}

void FourPs::buildMarkLines()
{
    m_pointLines = std::make_unique<MarkLines>(nullptr);
    m_edgeLines = std::make_unique<MarkLines>(nullptr);
    const auto add = [this](MarkLines* set, QLineEdit* edit, int reference) {
        m_lines.push_back(std::make_unique<MarkLine>(edit, 0, nullptr));
        m_lines.back()->relative = reference >= 0;
        m_lines.back()->refIndex = reference;
        set->lines.append(m_lines.back().get());
    };
    for (MarkLines* set : {m_pointLines.get(), m_edgeLines.get()}) {
        add(set, EdgeE, -1);
        add(set, PreEEndDE, 0); // the two bounds are typed relative to the edge
        add(set, PostEStartDE, 0);
    }
    for (AEPoint* point : qAsConst(ePoints))
        add(m_pointLines.get(), point->Energy, -1);
    displays->panel(mutsPanel)->DispA->markLines = m_pointLines.get();
    for (const auto i : {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Target})
        displays->panel(i)->DispA->markLines = m_edgeLines.get();

    connect(m_pointLines.get(), &MarkLines::moving, this, &FourPs::setEdge);
    connect(m_pointLines.get(), &MarkLines::newPos, this, &FourPs::setEdge);
    connect(m_pointLines.get(), &MarkLines::newPos, this, &FourPs::calcBoth);
    connect(m_edgeLines.get(), &MarkLines::moving, this, &FourPs::repaintDisplays);
    connect(m_edgeLines.get(), &MarkLines::moving, this, &FourPs::setEdge);
    connect(m_edgeLines.get(), &MarkLines::newPos, this, &FourPs::setEdge);
    connect(m_edgeLines.get(), &MarkLines::newPos, this, &FourPs::calcBoth);
}

void FourPs::buildMenus()
{
    m_question = std::make_unique<FileQuestion>();
    m_showMap = new QAction(MapWindow::tr("Show &Map"), this);
    m_showMap->setObjectName(QStringLiteral("ShowMap"));
    m_showMap->setShortcut(QKeySequence(QStringLiteral("Ctrl+M")));
    m_showMap->setShortcutContext(Qt::ApplicationShortcut);
    addAction(m_showMap);
    connect(m_showMap, &QAction::triggered, this, [this] { mapWindow().show(); });
    for (int i = 0; i < displays->panels.size(); ++i) {
        const DispABase* graph = displays->panels[i];
        const Displays::DispId id = displays->ids[i];
        auto* menu = new GraphMenu(*this, *graph->DispA, graph->Title->text(),
                                   [this, id] { return graphTable(id); });
        if (id == Displays::DispHistA || id == Displays::DispHistT || id == Displays::DispTA)
            menu->addAction(m_showMap);
    }
    new ResultsMenu(*this);
    m_jobMenu = new JobMenu(*this);
}

void FourPs::openJob(const QString& path)
{
    m_jobMenu->open(path);
}

void FourPs::showGuide(const QString& folder)
{
    const QString page =
        GuideWindow::firstPage(folder, wantsJapanese(QCoreApplication::arguments()));
    if (page.isEmpty()) {
        emit guideMissing();
        return;
    }
    if (!m_guide)
        m_guide = std::make_unique<GuideWindow>(page);
    m_guide->show();
    m_guide->raise();
    m_guide->activateWindow();
}

void FourPs::closeOthers()
{
    m_question->close();
    if (m_mapWindow)
        m_mapWindow->close();
    if (m_guide)
        m_guide->close();
}

// When all is built: a scroll area asks at once for the size of what it gets.
void FourPs::putInScrollArea()
{
    auto* contents = new QWidget;
    contents->setObjectName(QStringLiteral("PanelContents"));
    contents->setLayout(layout()); // takes the controls along
    auto* scroll = new ScreenScroll;
    scroll->setObjectName(QStringLiteral("PanelScroll"));
    scroll->setWidget(contents);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(QMargins());
    outer->addWidget(scroll);
}
