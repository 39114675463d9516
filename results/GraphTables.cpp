#include "results/GraphTables.h"

#include "analysis/FittedSpectrum.h"
#include "analysis/HistogramCounts.h"
#include "results/FourPointGraph.h"
#include "text/Csv.h"

#include <memory>
#include <utility>

namespace
{

const QString energyAxis = QStringLiteral("Eng.[eV]");
const QString mutAxis = QStringLiteral("mut");

/// A title of its parts, those that are not empty.
QString titled(const QStringList& parts)
{
    QStringList present = parts;
    present.removeAll(QString());
    return present.join(QStringLiteral(" | "));
}

QString joined(const QStringList& files)
{
    return files.join(QStringLiteral("; "));
}

/// A column whose cells are made here and now; for few of them.
TableColumn column(const QString& title, std::vector<QByteArray> cells)
{
    const std::size_t size = cells.size();
    return {title, size, [cells = std::move(cells)](std::size_t row) { return cells[row]; }};
}

template <class Value>
TableColumn numbers(const QString& title, std::size_t size, Value value)
{
    return {title, size, [value](std::size_t row) { return csv::number(value(row)); }};
}

/// Things of the graph that are neither curve nor point, each with what is to be said of it.
class NamedRows
{
public:
    explicit NamedRows(QStringList titles)
        : m_titles(std::move(titles)), m_cells(static_cast<std::size_t>(m_titles.size()))
    {
    }

    /// Fewer cells than titles leave the last ones empty.
    void add(const QByteArrayList& cells)
    {
        for (std::size_t i = 0; i < m_cells.size(); ++i)
            m_cells[i].push_back(cells.value(static_cast<int>(i)));
    }

    void appendTo(GraphTable& table) const
    {
        for (int i = 0; i < m_titles.size(); ++i)
            table.push_back(column(m_titles[i], m_cells[static_cast<std::size_t>(i)]));
    }

private:
    QStringList m_titles;
    std::vector<std::vector<QByteArray>> m_cells;
};

QByteArray ticked(bool on)
{
    return on ? "1" : "0";
}

void appendCurve(GraphTable& table, const QString& name, const QString& file,
                 std::vector<QPointF> curve)
{
    if (curve.empty())
        return;
    const auto points = std::make_shared<const std::vector<QPointF>>(std::move(curve));
    table.push_back(numbers(titled({name, file, energyAxis}), points->size(),
                            [points](std::size_t row) { return (*points)[row].x(); }));
    table.push_back(numbers(titled({name, file, mutAxis}), points->size(),
                            [points](std::size_t row) { return (*points)[row].y(); }));
}

QByteArray pointName(std::size_t row)
{
    return "No. " + QByteArray::number(static_cast<int>(row + 1));
}

void addPlace(NamedRows& rows, const QByteArray& name, const QPointF& place)
{
    rows.add({name, csv::number(place.x()), csv::number(place.y())});
}

} // namespace

GraphTable previewTable(const FittedSpectrum* data, const QString& name, const QString& file)
{
    GraphTable table;
    if (!data || data->points.empty())
        return table;
    const SpectrumPoints& points = data->points;
    const auto add = [&](const QString& title, auto value) {
        table.push_back(numbers(titled({name, file, title}), points.size(), value));
    };
    add(energyAxis, [&points](std::size_t row) { return points[row].energy; });
    add(mutAxis, [&points](std::size_t row) { return points[row].mut; });
    add(QStringLiteral("pre-edge line"),
        [data](std::size_t row) { return data->preVicAt(data->points[row].energy); });
    add(QStringLiteral("post-edge line"),
        [data](std::size_t row) { return data->postVicAt(data->points[row].energy); });
    NamedRows facts({QStringLiteral("Quantity"), QStringLiteral("Value")});
    facts.add({"Edge[eV]", csv::number(data->edge)});
    facts.add({"Pre Edge End [eV]", csv::number(data->preEdgeEnd)});
    facts.add({"Post Edge Start [eV]", csv::number(data->postEdgeStart)});
    facts.add({"Edge Jump(1)", csv::number(data->edgeJumpNoC())});
    facts.add({"Edge Jump(2)", csv::number(data->edgeJump())});
    facts.appendTo(table);
    return table;
}

GraphTable mutsTable(const MutsContent& content, const MutsFiles& files)
{
    GraphTable table;
    if (content.isEmpty())
        return table;
    static const QStringList names = {QStringLiteral("Ref 1"), QStringLiteral("Ref 2"),
                                      QStringLiteral("Target"), QStringLiteral("Blank")};
    const MutsCurves curves(content);
    for (std::size_t i = 0; i < curves.selected.size(); ++i) {
        const int place = static_cast<int>(i);
        appendCurve(table, names.value(place), files.selected.value(place), curves.selected[i]);
    }
    for (std::size_t i = 0; i < curves.displayOnly.size(); ++i)
        appendCurve(table, QStringLiteral("Disp. Only"),
                    files.displayOnly.value(static_cast<int>(i)), curves.displayOnly[i]);
    appendCurve(table, QStringLiteral("LCF"), QString(), curves.fit);
    NamedRows marks(
        {QStringLiteral("Mark"), energyAxis, QStringLiteral("Use"), QStringLiteral("T.Ratio.")});
    marks.add({"Edge", csv::number(content.edge)});
    marks.add({"Pre Edge End", csv::number(content.energies().from)});
    marks.add({"Post Edge Start", csv::number(content.energies().to)});
    for (std::size_t i = 0; i < content.rows.size(); ++i) {
        const PointRow& row = content.rows[i];
        marks.add({pointName(i), csv::number(row.energy), ticked(row.use), ticked(row.tRatio)});
    }
    marks.appendTo(table);
    return table;
}

GraphTable lcfTable(const std::vector<LCFvs4PSPoint>& points, const QStringList& targets)
{
    NamedRows rows({QStringLiteral("Target"), QStringLiteral("LCF"), QStringLiteral("4ps")});
    for (std::size_t i = 0; i < points.size(); ++i)
        rows.add({targets.value(static_cast<int>(i)).toUtf8(), csv::number(points[i].lcfValence),
                  csv::number(points[i].psValence)});
    GraphTable table;
    rows.appendTo(table);
    return table;
}

GraphTable histogramTable(const HistogramCounts& histogram, const QString& quantity,
                          const QStringList& files)
{
    if (histogram.counts.empty())
        return {};
    const HistogramCounts* h = &histogram;
    const std::size_t bins = histogram.counts.size();
    const std::size_t rows = bins + 2;
    const auto edge = [h](std::size_t row, double part) {
        return (static_cast<double>(row) - 1.0 + part) * h->width + h->from;
    };
    const QString file = joined(files);
    GraphTable table;
    const auto add = [&](const QString& title, double part) {
        table.push_back(numbers(titled({file, quantity, title}), rows,
                                [edge, part](std::size_t row) { return edge(row, part); }));
    };
    add(QStringLiteral("from"), 0.0);
    add(QStringLiteral("centre"), 0.5);
    add(QStringLiteral("to"), 1.0);
    table.push_back(
        numbers(titled({file, QStringLiteral("Num.")}), rows, [h, bins](std::size_t row) {
            const int count = row == 0 ? h->under : row > bins ? h->over : h->counts[row - 1];
            return static_cast<double>(count);
        }));
    return table;
}

GraphTable thicknessTable(const MapResults& map, const ReferenceValences& valences,
                          const QStringList& files)
{
    if (map.size() == 0)
        return {};
    const MapResults* m = &map;
    const QString file = joined(files);
    return {numbers(QStringLiteral("first position"), map.size(),
                    [m](std::size_t i) { return m->position(i).first; }),
            numbers(QStringLiteral("second position"), map.size(),
                    [m](std::size_t i) { return m->position(i).second; }),
            numbers(titled({file, QStringLiteral("Valence")}), map.size(),
                    [m, valences](std::size_t i) { return valences.mean(m->a[i]); }),
            numbers(titled({file, QStringLiteral("Thick.")}), map.size(),
                    [m](std::size_t i) { return m->t[i]; })};
}

GraphTable fourPointTable(const PointRows& rows, double rho, const QString& ref1,
                          const QString& ref2)
{
    const FourPointGeometry geometry = fourPointGeometry(rows, rho);
    NamedRows places({QStringLiteral("Place"), titled({ref1, QStringLiteral("M2")}),
                      titled({ref2, QStringLiteral("M3")}), QStringLiteral("Use"),
                      QStringLiteral("V.Point")});
    for (std::size_t i = 0; i < geometry.marks.size(); ++i) {
        const FourPointGeometry::Mark& mark = geometry.marks[i];
        places.add({pointName(i), csv::number(mark.place.x()), csv::number(mark.place.y()),
                    ticked(mark.use), ticked(mark.vPoint)});
    }
    if (geometry.v) {
        addPlace(places, "pure Ref 1", geometry.pureRef1());
        addPlace(places, "pure Ref 2", geometry.pureRef2());
    }
    if (geometry.target)
        addPlace(places, "Target", *geometry.target);
    GraphTable table;
    places.appendTo(table);
    return table;
}
