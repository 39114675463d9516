#pragma once

#include "analysis/LcfPoint.h"
#include "analysis/MapCalculation.h"
#include "analysis/TargetResult.h"
#include "display/Displays.h"
#include "input/KnownPositions.h"
#include "results/GraphTable.h"
#include "results/ThicknessGraph.h"
#include "ui_FourPs.h"

#include <QByteArrayList>
#include <QFrame>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class AEPoint;
class AXafsData;
class FileQuestion;
class GuideWindow;
class Histgram;
class JobMenu;
class MarkLine;
class MapWindow;
class MarkLines;
class MissingPixels;
class MouseC;
struct LinearCombination;
struct MapPixels;
struct MapRanges;
struct MutsContent;
class QAction;
class QButtonGroup;
class QStylePainter;

/// The analysis panel: owns every control, receives every signal, wires and delegates. A slot reads
/// the widgets into plain data, calls a function of the numeric core and shows what comes back.
class FourPs : public QFrame, public Ui_FourPs
{
    Q_OBJECT

public:
    /// What is calculated, each by its own button.
    enum class Result { Map, Target, Fit };
    static constexpr int results = 3; ///< kinds of them

    explicit FourPs(QWidget* parent = nullptr);
    ~FourPs() override;

    QVector<AXafsFileSelect*> xafsSelects; ///< in the order of SpectrumSet
    QVector<AEPoint*> ePoints;             ///< rows 1 to 8 of the point table
    AFileSelect* mapFileSelect = nullptr;  ///< several 2D data files at once
    Displays* displays = nullptr;          ///< the graph window

    /// Adds one simplified line to the message pane and shows its end.
    void appendMessage(const QString& text);

    /// Tells what became of a file that was to be written.
    void tellWritten(const QString& path, WriteOutcome outcome);

    /// Makes many changes as one: shown results are forgotten, all is calculated at the end.
    void fill(const std::function<void()>& change);

    /// Fills the panel from a job file, as the menu does.
    void openJob(const QString& path);

    /// Shows the guide in the language of the window.
    /// @param folder  of the program
    void showGuide(const QString& folder);
    /// Closes what belongs to the window and is not of its graphs.
    void closeOthers();

    /// What a graph shows.
    GraphTable graphTable(Displays::DispId id) const;
    /// The window of the map, made when first asked for.
    MapWindow& mapWindow();
    /// The results of the last map as pictures see them, valid until the next calculation.
    MapPixels mapPixels() const;
    /// What the histograms count as between below and above.
    MapRanges mapRanges() const;
    /// Shows pixels of the map in "t/a".
    void highlight(std::vector<std::size_t> pixels);

    /// Paths of the spectra and 2D data that are there.
    QStringList filesRead() const;
    /// Files and results of target and fit as two lines, names and values, separated by tabs; six
    /// digits, as they are shown. What there is not is empty.
    QString resultsAsTable() const;
    /// Asks for the names of files, one at a time.
    FileQuestion& fileQuestion() { return *m_question; }

    ThicknessType thicknessType() const; ///< that is chosen

    double lastA() const { return m_lastA; }
    double lastValence() const { return m_lastValence; }
    const MapResults& lastMap() const { return mapResults; }
    /// Of each linear combination fit since "LCF vs 4PS" was emptied, oldest first.
    const std::vector<LCFvs4PSPoint>& fits() const { return lcfVs4ps; }
    const ThicknessRatios& thicknessRatioFigures() const { return m_ratios; }

signals:
    void messageAppended(const QString& line); ///< after each line of the message pane
    void refused(const QString& line);         ///< the line is a refusal, no result
    void written(const QString& path);         ///< a file, whole
    void unread(const QString& path);          ///< a file that was named and held nothing
    void guideMissing();                       ///< it was asked for and is not installed
    void mutFilled(int row, int spectrum);     ///< a field of the point table, from 0
    void calculated(FourPs::Result result);    ///< or refused: what could be used was used
    /// What a long operation does and how much is done: 0 at its beginning, 1 at its end.
    void progress(const QString& text, double part);

public slots:
    /// Tells in the message pane why something is not done.
    void refuse(const QString& text);

    // Typed or dragged edge settings: refit every spectrum.
    void setEdge();

    // Options.
    void dispCalcConditions(bool on);
    void changedUseVic(bool on);
    void changedUseVicForTarget(bool on);
    void changedUsingVicIs1(bool on);

    // Files, folders and energies.
    void removeAFile();                         ///< "Remove": drops the chosen display spectrum
    void receiveNewDir(const QString& dir);     ///< any selector: all open dialogs follow
    void receiveNewRef1(const QString& path);   ///< the mut(Ref.1) column
    void receiveNewRef2(const QString& path);   ///< the mut(Ref.2) column
    void receiveNewTarget(const QString& path); ///< the mut(Target) column
    void receiveNewBlank(const QString& path);  ///< the mut(Blank) column
    void receiveNewDispFiles(const QStringList& paths); ///< display-only spectra
    void receiveNewPaths(const QStringList& paths);     ///< 2D data files for rows 1, 2, ...

    // Calculations.
    void calcBoth();     ///< map, target and LCF, each with its own checks
    void calcMap();      ///< each pixel of the 2D data
    void calcTarget();   ///< the target spectrum
    void calcAndWrite(); ///< the map, then its result file
    void write();        ///< the result file and the histogram files

    // Graphs.
    void clearLCFvs4PS(MouseC* mouse); ///< double click on "LCF vs 4PS": forgets its points
    void draw(Displays::DispId id, DispABase* panel, QStylePainter* painter);

    void lcf(); ///< linear combination fit of the target

private:
    // Construction, in this order.
    void buildSelectors();
    void buildDisplays();
    void buildThicknessGroup();
    void connectGraphWindow();
    void buildPoints();
    void buildPointTable();
    void buildHistograms();
    void setDefaultPoints();
    void connectInputs();
    void applyConditions();
    void connectConditions();
    void buildMarkLines();
    void buildMenus();
    void putInScrollArea(); ///< of use on screens smaller than the panel

    // Inputs.
    PointRows rows() const;
    FitBounds edgeBounds() const; ///< of all spectra
    SpectrumSet spectra() const;
    ReferenceValences valences() const;
    Conditions conditions() const;
    AnalysisInput input() const;
    void receiveNewEnergy(AEPoint* point, double energy); ///< of a row: its mu-t fields
    /// A spectrum: its column, then recalculate. The selector has read it.
    void receiveNewFile(SpectrumSet::Index select, const QString& path);
    QLineEdit* mutField(AEPoint* point, SpectrumSet::Index select) const;
    void refreshMut(AEPoint* point, SpectrumSet::Index select, double energy);
    void refreshColumn(SpectrumSet::Index select);
    void repaintDisplays();
    void forgetResults(); ///< but for the fits in "LCF vs 4PS"

    // Graphs.
    void drawHighlighted(QPainter& painter, const ChCoord& coord) const;
    MutsContent mutsContent() const;
    MapPoints mapPoints() const;
    GraphTable mutsTable() const;
    double rhoNow() const;

    std::unique_ptr<QButtonGroup> trGroup;
    std::vector<std::unique_ptr<AXafsData>> dispData; ///< parallel to the items of SelectedFs
    std::unique_ptr<Histgram> histA;
    std::unique_ptr<Histgram> histT;
    std::vector<std::unique_ptr<MarkLine>> m_lines;
    std::unique_ptr<MarkLines> m_pointLines; ///< edge lines and one a row, for "Muts"
    std::unique_ptr<MarkLines> m_edgeLines;  ///< edge lines, for the three previews

    KnownPositions m_knownPositions; ///< of the rows' 2D data
    MapResults mapResults;           ///< of the last map calculation
    QByteArrayList mapHeader;        ///< header lines of the 2D data that own its grid
    QStringList m_mapFiles;          ///< names of the files of the last map calculation
    std::uint64_t m_mapCount = 0;    ///< map calculations so far
    ThicknessGraph m_thicknessGraph;

    ThicknessRatios m_ratios{};
    std::optional<TargetResult> m_lastTarget;
    std::unique_ptr<LinearCombination> m_lastFit; ///< without its curve
    double m_lastFitValence = 0.0;
    double m_lastA = 0.0;
    double m_lastValence = 0.0;
    std::unique_ptr<FittedSpectrum> lcfFit; ///< curve of the last fit
    std::vector<LCFvs4PSPoint> lcfVs4ps;    ///< oldest first
    QStringList m_fitTargets;               ///< parallel to lcfVs4ps, the targets' files

    bool m_filling = false; ///< changes that are calculated together
    std::unique_ptr<FileQuestion> m_question;
    std::unique_ptr<MissingPixels> m_missing; ///< of mapResults
    std::vector<std::size_t> m_highlighted;   ///< pixels of mapResults
    std::unique_ptr<MapWindow> m_mapWindow;
    std::unique_ptr<GuideWindow> m_guide;
    QAction* m_showMap = nullptr; ///< owned
    JobMenu* m_jobMenu = nullptr; ///< owned
};
