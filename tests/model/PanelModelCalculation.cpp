#include "tests/model/PanelModel.h"

#include <QDir>
#include <QFileInfo>

#include <cmath>

// The calculations of the panel's model and its result files.
namespace literal
{

namespace
{

} // namespace

double PanelModel::valence(double a) const
{
    return number(name("Valence1")) * a + number(name("Valence2")) * (1 - a);
}

void PanelModel::calcBoth()
{
    calcMap();
    calcTarget();
    lcf();
}

PanelModel::Method PanelModel::methodFor(int n) const
{
    if (n == 3)
        return Method::Three;
    if (n == 4)
        return checks[name("TypeTMKisExact")] ? Method::Exact : Method::LeastSquares;
    if (n > 4 && checks[name("TypeTMKisLS")])
        return Method::LeastSquares;
    return Method::None;
}

bool PanelModel::refuse(int vRow, const QString& noVPoint, bool targetToo)
{
    QString refusal;
    if (vRow == 0)
        refusal = noVPoint;
    else if (!selectors[0].spectrum.valid)
        refusal = name("Ref File1 is not valid.");
    else if (!selectors[1].spectrum.valid)
        refusal = name("Ref File2 is not valid.");
    else if (targetToo && !selectors[2].spectrum.valid)
        refusal = name("Target File1 is not valid.");
    else
        return false;
    appendMessage(refusal);
    return true;
}

void PanelModel::calcTarget()
{
    int n = 0;
    int vRow = 0;
    for (int row = 1; row <= 8; ++row) {
        if (!rowChecked(row, "use"))
            continue;
        n += 1;
        if (rowChecked(row, "vpoint"))
            vRow = row;
    }
    if (refuse(vRow, name("V Point is not selected."), true))
        return;
    const Method method = methodFor(n);
    if (method == Method::None) {
        appendMessage(name("Number of selected data sets %1 is not %2.").arg(n).arg(4));
        return;
    }
    const Points points = choosePoints();
    if (method == Method::Three) {
        const formulas::Result result = resultOf(method, points, 0.0);
        takeTargetResult(name("3ps: a = %1, Valence = %2").arg(result.a).arg(valence(result.a)),
                         result.a);
        return;
    }
    const double rho = thicknessRatio();
    const formulas::Result result = resultOf(method, points, rho);
    const QString form = method == Method::Exact ? name("a = %1, Valence = %2, t/ts = %3")
                                                 : name("4ps2: a = %1, Valence = %2, t/ts = %3");
    takeTargetResult(form.arg(result.a).arg(valence(result.a)).arg(result.thickness), result.a);
}

void PanelModel::takeTargetResult(const QString& text, double a)
{
    texts[name("CalcRes")] = text;
    appendMessage(text);
    lastA = a;
    lastValence = valence(a);
}

void PanelModel::calcMap()
{
    int n = 0;
    int vRow = 0;
    for (int row = 1; row <= 8; ++row) {
        if (!images[row].valid || !rowChecked(row, "use"))
            continue;
        n += 1;
        if (rowChecked(row, "vpoint"))
            vRow = row;
    }
    if (refuse(vRow, name("V Point is not selected"), false))
        return;
    const Method method = methodFor(n);
    if (method == Method::None)
        appendMessage(name("Number of selected data sets %1 is not %2.").arg(n).arg(4));
    else
        fillMap(method);
}

PanelModel::Points PanelModel::choosePoints() const
{
    Points points;
    for (int row = 1; row <= 8; ++row) {
        if (!rowChecked(row, "use"))
            continue;
        const double blank = rowNumber(row, "mutBlank");
        Point point;
        point.row = row;
        point.e = rowNumber(row, "energy");
        point.r1 = rowNumber(row, "mut1") - blank;
        point.r2 = rowNumber(row, "mut2") - blank;
        point.t = rowNumber(row, "mutT");
        if (!rowsUseVicForTarget)
            point.t -= blank;
        if (rowChecked(row, "vpoint"))
            points.v = point;
        else
            points.norm.append(point);
    }
    return points;
}

formulas::Result PanelModel::resultOf(Method method, const Points& points, double rho) const
{
    if (method == Method::Three)
        return formulas::threePoint(points.norm[0], points.norm[1], points.v);
    return formulas::fourPoint(method == Method::Exact ? formulas::exactScale(points.norm)
                                                       : formulas::leastSquaresScale(points.norm),
                               rho, points.v);
}

QVector<PanelModel::Row> PanelModel::rows() const
{
    QVector<Row> rows;
    for (int row = 1; row <= 8; ++row)
        rows.append({rowChecked(row, "use"), rowChecked(row, "tratio"), rowChecked(row, "vpoint"),
                     rowsUseVic, rowNumber(row, "mut1"), rowNumber(row, "mut2"),
                     rowNumber(row, "mutBlank")});
    return rows;
}

double PanelModel::thicknessRatio()
{
    const formulas::Ratios r = formulas::thicknessRatios(rows(), selectors[0].spectrum.edgeJump(),
                                                         selectors[1].spectrum.edgeJump());
    appendMessage(name("sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, "
                       "Vic2 = %7")
                      .arg(r.sbys)
                      .arg(r.mean)
                      .arg(r.lsA)
                      .arg(r.lsB)
                      .arg(r.lsANB)
                      .arg(r.lsBNB)
                      .arg(r.vic2));
    if (checks[name("TRSbyS")])
        return r.sbys;
    if (checks[name("TRMean")])
        return r.mean;
    if (checks[name("TRLSquare")])
        return r.lsA;
    if (checks[name("TRLSquareNB")])
        return r.lsANB;
    return r.vic2;
}

void PanelModel::fillMap(Method method)
{
    Points points = choosePoints();
    const double rho = method == Method::Three ? 0.0 : thicknessRatio();
    histA.reset(texts[name("HgAFrom")], texts[name("HgATo")], texts[name("HgABoxes")]);
    histT.reset(texts[name("HgTFrom")], texts[name("HgTTo")], texts[name("HgTBoxes")]);
    mapResults.clear();
    const Image& grid = images[points.v.row];
    mapHeader = grid.header;
    mapColumns = grid.columns;
    mapRows = grid.rows;
    const auto targetAt = [this](Point& point, int ix, int iy) {
        const Image& image = images[point.row];
        point.t = image.mutAt(qint64(iy) * image.columns + ix);
    };
    for (int iy = 0; iy < mapRows; ++iy) {
        for (int ix = 0; ix < mapColumns; ++ix) {
            for (Point& point : points.norm)
                targetAt(point, ix, iy);
            targetAt(points.v, ix, iy);
            const formulas::Result result = resultOf(method, points, rho);
            const int i = iy * mapColumns + ix;
            const ImageRecord pixel = i < grid.records.size() ? grid.records[i] : ImageRecord();
            mapResults.append({pixel.position1, pixel.position2, result.a, result.thickness});
            histA.add(valence(result.a));
            histT.add(result.thickness);
        }
    }
}

void PanelModel::lcf()
{
    double min = 1e300;
    double max = -1e300;
    int count = 0;
    for (int row = 1; row <= 8; ++row) {
        if (!rowChecked(row, "tratio"))
            continue;
        const double e = rowNumber(row, "energy");
        if (e < min)
            min = e;
        if (e > max)
            max = e;
        count += 1;
    }
    if (min > max || count < 2)
        appendMessage(name("Energy Range is not selected, which should by selected by CB of TR."));
    else
        fitCombination(min, max);
}

void PanelModel::fitCombination(double min, double max)
{
    const auto fit =
        formulas::combine(selectors[0].spectrum, selectors[1].spectrum, selectors[2].spectrum, min,
                          max, number(name("Valence1")), number(name("Valence2")));
    appendMessage(name("Result of LCF : %1 %2 %3").arg(fit.p1).arg(fit.p2).arg(fit.p3));
    texts[name("LCFRes")] =
        name("a : (1-a) = %1 : %2,  Valence = %3").arg(fit.a).arg(fit.rest).arg(fit.valence);
    lcfVs4ps.append({lastA, lastValence, fit.a, fit.valence});
}

QString PanelModel::resultText() const
{
    QString text;
    for (const QString& line : mapHeader)
        text += line + QLatin1Char('\n');
    if (!mapHeader.isEmpty())
        text += QLatin1Char('\n');
    for (int r = 0; r < mapRows; ++r) {
        for (int c = 0; c < mapColumns; ++c) {
            const int k = r * mapColumns + c;
            const MapRecord result = k < mapResults.size() ? mapResults[k] : MapRecord();
            text += name(" %1 %2    %3 %4 %5\n")
                        .arg(result.position1, 10)
                        .arg(result.position2, 10)
                        .arg(result.a, 10)
                        .arg(valence(result.a), 10)
                        .arg(result.t, 10);
        }
        text += QLatin1Char('\n');
    }
    return text;
}

void PanelModel::write()
{
    output.clear();
    const QString path = texts[name("SaveFSelect")];
    const QFileInfo target(path);
    const bool opens = !path.isEmpty() && !target.isDir() && QFileInfo(target.path()).isDir();
    if (opens)
        output[path] = resultText();
    else
        appendMessage(name("Can't open the file [%1]").arg(path));
    writeHistogram(histA, path, name("HGAlpha"));
    writeHistogram(histT, path, name("HGThick"));
}

void PanelModel::writeHistogram(const Histogram& histogram, const QString& path, const QString& tag)
{
    const QFileInfo target(path);
    const QString fileName =
        target.completeBaseName() + QLatin1Char('_') + tag + QLatin1Char('.') + target.suffix();
    const QString file = QDir(target.canonicalPath()).filePath(fileName);
    if (!target.canonicalPath().isEmpty() && QFileInfo(file).isFile())
        output[file] = histogram.fileText();
}

} // namespace literal
