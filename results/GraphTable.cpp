#include "results/GraphTable.h"

#include "text/Csv.h"

#include <algorithm>

namespace
{

constexpr int blockBytes = 1 << 16;

std::size_t rowsOf(const GraphTable& table)
{
    std::size_t rows = 0;
    for (const TableColumn& column : table)
        rows = std::max(rows, column.size);
    return rows;
}

QByteArray titleLine(const GraphTable& table)
{
    QByteArrayList titles;
    for (const TableColumn& column : table)
        titles.append(column.title.toUtf8());
    return csv::line(titles);
}

QByteArray rowLine(const GraphTable& table, std::size_t row)
{
    QByteArrayList cells;
    for (const TableColumn& column : table)
        cells.append(row < column.size ? column.cell(row) : QByteArray());
    return csv::line(cells);
}

} // namespace

WriteOutcome writeTable(const QString& path, const GraphTable& table,
                        const std::function<void(double part)>& progress)
{
    SafeFile file(path);
    if (!file.open())
        return WriteOutcome::CannotOpen;
    const std::size_t rows = rowsOf(table);
    QByteArray block = titleLine(table);
    for (std::size_t row = 0; row < rows; ++row) {
        block += rowLine(table, row);
        if (block.size() < blockBytes)
            continue;
        if (!file.write(block.constData(), block.size()))
            return WriteOutcome::CannotWrite;
        block.clear();
        progress(static_cast<double>(row) / static_cast<double>(rows));
    }
    const bool written = file.write(block.constData(), block.size()) && file.commit();
    return written ? WriteOutcome::Written : WriteOutcome::CannotWrite;
}
