#pragma once

#include "tests/model/LiteralHistogram.h"
#include "tests/model/LiteralImage.h"
#include "tests/model/LiteralSpectrum.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

namespace literal
{

/// A name or text of the panel.
inline QString name(const char* text)
{
    return QString::fromLatin1(text);
}

/// The horizontal axis of a canvas: data value r0 at pixel p0, r1 at p1.
struct XAxis {
    double r0 = 0.0;
    double r1 = 1.0;
    double p0 = 0.0;
    double p1 = 1.0;
};

/// A second reading of the analysis panel without any widget: what each act of the user does to
/// the fields, the messages and the result files, in the plainest words. It shares no code with the
/// program; the random sessions compare the two after every step.
///
/// Fields carry the object names of the form; those of the point table are "1.use" to "8.2d".
class PanelModel
{
public:
    PanelModel();

    QMap<QString, QString> texts; ///< every line edit
    QMap<QString, bool> checks;   ///< every check box and radio button
    QStringList displayFiles;     ///< the items of the list of display-only spectra
    int currentDisplayFile = -1;  ///< the item shown
    QStringList messages;         ///< the lines of the message pane
    /// For each run of the fit: the point method's a and valence, the fit's a and valence.
    QVector<QVector<double>> lcfVs4ps;
    QMap<QString, QString> output; ///< text of each file that the last "Write" had to write

    void type(const QString& field, const QString& text) { texts[field] = text; }
    /// Return was pressed in a field, or the field lost the keyboard.
    void finishEditing(const QString& field);
    /// A check box, radio button or push button.
    void click(const QString& button);
    /// One file for a selector: dropped, or the only one chosen in the dialog.
    void giveFile(const QString& selector, const QString& path);
    /// What the dialog's list of chosen files does; one of several files has no other effect.
    void giveFiles(const QString& selector, const QStringList& paths);
    void clearFile(const QString& selector);
    void selectDisplayFile(int index) { currentDisplayFile = index; }

    /// A press, moves and the release at pixel columns of a canvas with marker lines; the graph of
    /// all spectra has one for each energy point besides the three of the edge. False if no line
    /// was near enough.
    bool drag(bool allSpectra, const XAxis& axis, const QVector<int>& pixels);

    static QStringList rowFields(); ///< "use", "tratio", ... of one row of the point table
    static QString inRow(int row, const char* field); ///< row from 1

private:
    double number(const QString& field) const { return texts[field].toDouble(); }
    double rowNumber(int row, const char* field) const { return number(inRow(row, field)); }
    bool rowChecked(int row, const char* field) const { return checks[inRow(row, field)]; }

    void setEdge();
    void appendMessage(const QString& text);
    void lookUp(int row, int selector);
    void refreshColumn(int selector);
    void newEnergy(int row);
    void loadImage(int row, const QString& path);
    void giveDisplayFiles(const QStringList& paths);
    void push(const QString& button);
    bool chooseOption(const QString& button);
    void chooseRadio(const QString& button, const QStringList& group);
    void changedUseVic();
    void changedUseVicForTarget();
    void changedVictreenChoice(bool before);
    void removeDisplayFile();

    struct Point : formulas::Point {
        int row = 0;
    };
    struct Points {
        QVector<Point> norm;
        Point v;
    };
    /// A row of the point table, for the thickness ratio.
    struct Row {
        bool use = false;
        bool tRatio = false;
        bool vPoint = false;
        bool useVicRefs = false;
        double mut1 = 0.0;
        double mut2 = 0.0;
        double mutBlank = 0.0;
    };
    struct MapRecord {
        double position1 = 0.0;
        double position2 = 0.0;
        double a = 0.0;
        double t = 0.0;
    };
    enum class Method { None, Three, Exact, LeastSquares };

    Method methodFor(int n) const;
    bool refuse(int vRow, const QString& noVPoint, bool targetToo);
    Points choosePoints() const;
    formulas::Result resultOf(Method method, const Points& points, double rho) const;
    double thicknessRatio();
    QVector<Row> rows() const;
    double valence(double a) const;
    void takeTargetResult(const QString& text, double a);
    void fillMap(Method method);

    void calcBoth();
    void calcMap();
    void calcTarget();
    void lcf();
    void fitCombination(double min, double max);
    void write();
    void writeHistogram(const Histogram& histogram, const QString& path, const QString& tag);
    QString resultText() const;

    Selector selectors[4];
    QVector<Spectrum> displayData;
    Image images[9]; ///< by row, from 1
    bool rowsUseVic = false;
    bool rowsUseVicForTarget = false;
    QStringList mapHeader;
    QVector<MapRecord> mapResults;
    double lastA = 0.0;
    double lastValence = 0.0;
    int mapColumns = 0;
    int mapRows = 0;
    Histogram histA;
    Histogram histT;
};

} // namespace literal
