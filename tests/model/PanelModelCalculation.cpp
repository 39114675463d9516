#include "tests/model/LiteralSolver.h"
#include "tests/model/PanelModel.h"

#include <QDir>
#include <QFileInfo>

#include <cmath>

// The calculations of the panel's model and its result files.
namespace literal
{

namespace
{

QString name(const char* text)
{
    return QString::fromLatin1(text);
}

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
        double unused = 0.0;
        const Result result = threePoint(points, unused);
        takeTargetResult(name("3ps: a = %1, Valence = %2").arg(result.a).arg(valence(result.a)),
                         result.a);
        return;
    }
    const double rho = thicknessRatio();
    const Result result = fourPoint(method, points, rho);
    const QString form = method == Method::Exact ? name("a = %1, Valence = %2, t/ts = %3")
                                                 : name("4ps2: a = %1, Valence = %2, t/ts = %3");
    takeTargetResult(form.arg(result.a).arg(valence(result.a)).arg(result.t), result.a);
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

PanelModel::Result PanelModel::threePoint(const Points& points, double& mapThickness) const
{
    const Point& p0 = points.norm[0];
    const Point& p1 = points.norm[1];
    const Point& v = points.v;
    const double k = (v.r2 - p0.r2) / (p1.r2 - p0.r2);
    const double a = ((v.t - p0.t) / (p1.t - p0.t) - k) / ((v.r1 - p0.r1) / (p1.r1 - p0.r1) - k);
    mapThickness = (p1.t - p0.t) / (((p1.r1 - p0.r1) + (p1.r1 - p0.r2)) * 0.5);
    return {a, mapThickness};
}

void PanelModel::leastSquaresBackground(const QVector<Point>& p, double& q, double& mu0,
                                        double& k) const
{
    double n = 0.0;
    double e = 0.0;
    double t = 0.0;
    double s = 0.0;
    double ee = 0.0;
    double et = 0.0;
    double tt = 0.0;
    double es = 0.0;
    double ts = 0.0;
    for (const Point& point : p) {
        const double sum = point.r1 + point.r2;
        n += 1.0;
        e += point.e;
        t += point.t;
        s += sum;
        ee += point.e * point.e;
        et += point.e * point.t;
        tt += point.t * point.t;
        es += point.e * sum;
        ts += point.t * sum;
    }
    const QVector<double> x = solve({{n, e, t}, {e, ee, et}, {t, et, tt}}, {s, es, ts});
    q = x[2];
    mu0 = -x[0] / x[2];
    k = -x[1] / x[2];
}

PanelModel::Result PanelModel::exactBackground(const QVector<Point>& p, double& q, double& mu0,
                                               double& k) const
{
    const double e0 = p[0].e;
    const double e1 = p[1].e;
    const double e2 = p[2].e;
    const double t0 = p[0].t;
    const double t1 = p[1].t;
    const double t2 = p[2].t;
    const double s0 = p[0].r1 + p[0].r2;
    const double s1 = p[1].r1 + p[1].r2;
    const double s2 = p[2].r1 + p[2].r2;
    const double ds = s2 * (e1 - e0) + s1 * (e0 - e2) + s0 * (e2 - e1);
    const double dt = t2 * (e1 - e0) + t1 * (e0 - e2) + t0 * (e2 - e1);
    q = ds / dt;
    mu0 = -((e0 * t1 - t0 * e1) * s2 + (e1 * s0 - e0 * s1) * t2 + e2 * t0 * s1 - e2 * s0 * t1) / ds;
    k = ((t1 - t0) * s2 + (s0 - s1) * t2 + s1 * t0 - s0 * t1) / ds;
    return {0.0, 1 / (q * 0.5)};
}

PanelModel::Result PanelModel::fourPoint(Method method, const Points& points, double rho) const
{
    double q = 0.0;
    double mu0 = 0.0;
    double k = 0.0;
    if (method == Method::Exact)
        exactBackground(points.norm, q, mu0, k);
    else
        leastSquaresBackground(points.norm, q, mu0, k);
    const Point& v = points.v;
    const double u = q / (rho + 1);
    const double a =
        (v.r2 * rho * u + rho * u * u * (mu0 + k * v.e - v.t)) / (v.r2 * rho * u - u * v.r1);
    return {a, 1 / (q * 0.5)};
}

QVector<int> PanelModel::thicknessRows() const
{
    bool any = false;
    for (int row = 1; row <= 8; ++row)
        any = any || rowChecked(row, "tratio");
    QVector<int> rows;
    for (int row = 1; row <= 8; ++row) {
        if (rowChecked(row, any ? "tratio" : "use") && !rowChecked(row, "vpoint"))
            rows.append(row);
    }
    return rows;
}

double PanelModel::thicknessRatio()
{
    double n = 0.0;
    double x = 0.0;
    double xx = 0.0;
    double y = 0.0;
    double xy = 0.0;
    double ratio = 0.0;
    double bx = 0.0;
    double bxx = 0.0;
    double by = 0.0;
    double bxy = 0.0;
    for (const int row : thicknessRows()) {
        const double typed1 = rowNumber(row, "mut1");
        const double typed2 = rowNumber(row, "mut2");
        const double blank = rowsUseVic ? 0.0 : rowNumber(row, "mutBlank");
        const double y1 = rowsUseVic ? typed1 : typed1 - blank;
        const double x1 = rowsUseVic ? typed2 : typed2 - blank;
        n += 1.0;
        x += x1;
        xx += x1 * x1;
        y += y1;
        xy += x1 * y1;
        ratio += y1 / x1;
        bx += typed2;
        bxx += typed2 * typed2;
        by += typed1;
        bxy += typed2 * typed1;
    }
    const double sbys = y / x;
    const double mean = ratio / n;
    const double lsA = (n * xy - y * x) / (n * xx - x * x);
    const double lsB = (y * xx - xy * x) / (n * xx - x * x);
    const double lsANB = (n * bxy - by * bx) / (n * bxx - bx * bx);
    const double lsBNB = (bxx * by - bxy * bx) / (n * bxx - bx * bx);
    const double vic2 = selectors[0].spectrum.edgeJump() / selectors[1].spectrum.edgeJump();
    appendMessage(name("sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, "
                       "Vic2 = %7")
                      .arg(sbys)
                      .arg(mean)
                      .arg(lsA)
                      .arg(lsB)
                      .arg(lsANB)
                      .arg(lsBNB)
                      .arg(vic2));
    if (checks[name("TRSbyS")])
        return sbys;
    if (checks[name("TRMean")])
        return mean;
    if (checks[name("TRLSquare")])
        return lsA;
    if (checks[name("TRLSquareNB")])
        return lsANB;
    return vic2;
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
            double thickness = 0.0;
            const Result result = method == Method::Three ? threePoint(points, thickness)
                                                          : fourPoint(method, points, rho);
            const int i = iy * mapColumns + ix;
            const ImageRecord pixel = i < grid.records.size() ? grid.records[i] : ImageRecord();
            mapResults.append({pixel.position1, pixel.position2, result.a, result.t});
            histA.add(valence(result.a));
            histT.add(result.t);
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
    const Spectrum& target = selectors[2].spectrum;
    double s11 = 0.0;
    double s12 = 0.0;
    double s1 = 0.0;
    double s22 = 0.0;
    double s2 = 0.0;
    double n = 0.0;
    double s1y = 0.0;
    double s2y = 0.0;
    double sy = 0.0;
    for (int i = 0; i < target.points.size(); ++i) {
        const double e = target.points[i].energy;
        if (!(min <= e && e <= max))
            continue;
        const double x1 = selectors[0].spectrum.normalizedAt(e);
        const double x2 = selectors[1].spectrum.normalizedAt(e);
        const double y = target.normalizedPoint(i);
        s11 += x1 * x1;
        s12 += x1 * x2;
        s1 += x1;
        s22 += x2 * x2;
        s2 += x2;
        n += 1.0;
        s1y += x1 * y;
        s2y += x2 * y;
        sy += y;
    }
    const QVector<double> p = solve({{s11, s12, s1}, {s12, s22, s2}, {s1, s2, n}}, {s1y, s2y, sy});
    appendMessage(name("Result of LCF : %1 %2 %3").arg(p[0]).arg(p[1]).arg(p[2]));
    const double v1 = number(name("Valence1"));
    const double v2 = number(name("Valence2"));
    const double s = p[0] + p[1];
    texts[name("LCFRes")] = name("a : (1-a) = %1 : %2,  Valence = %3")
                                .arg(p[0] / s)
                                .arg(p[1] / s)
                                .arg(v1 * p[0] / s + v2 * p[1] / s);
    lcfVs4ps.append({lastA, lastValence, p[0] / s, v1 * p[0] / s + v2 * p[1] / s});
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
