#pragma once

#include "system/SafeFile.h"

#include <QByteArrayList>
#include <QStringList>

#include <string>
#include <vector>

/// A table of results, column by column.
struct ResultTable {
    struct Column {
        QByteArray name;
        bool isNumber = true;
        std::vector<double> numbers = {}; ///< not-a-number where there is none
        QByteArrayList texts = {};        ///< UTF-8
    };
    std::vector<Column> columns;

    bool isEmpty() const { return columns.empty(); }
    std::size_t rows() const
    {
        const Column& first = columns.front();
        return first.isNumber ? first.numbers.size() : static_cast<std::size_t>(first.texts.size());
    }
};

/// What one HDF5 file has of a run.
struct RunContents {
    struct Map {
        QByteArray name;
        QString file;      ///< that was written for it alone (writeHdf5)
        QByteArray inputs; ///< a line each
    };
    QByteArray program;
    QByteArray version;
    QByteArray job; ///< its text
    std::vector<Map> maps;
    ResultTable targets; ///< empty: there is no table
};

/// Writes the results of a run as one HDF5 file: an NXentry for each map, copied from its own file,
/// with an NXprocess, and the table of targets, in a group "targets". Equal contents make equal
/// bytes. No more than the table is in memory.
WriteOutcome writeRunFile(const QString& path, const RunContents& run);
