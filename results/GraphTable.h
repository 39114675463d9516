#pragma once

#include "system/SafeFile.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <functional>
#include <vector>

/// A column of a table. Columns that follow one another need not have the same number of cells.
struct TableColumn {
    QString title;
    std::size_t size = 0;
    std::function<QByteArray(std::size_t row)> cell; ///< text of a cell below size
};

/// What a graph shows, as columns of numbers. It refers to the data of the graph and needs to be
/// used before they change.
using GraphTable = std::vector<TableColumn>;

/// Writes a table as comma-separated values (text/Csv.h): the titles, then a line for each row;
/// cells beyond the end of a column are empty.
/// @param progress  called with the part that is written
WriteOutcome writeTable(const QString& path, const GraphTable& table,
                        const std::function<void(double part)>& progress);
