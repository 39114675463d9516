#pragma once

#include "analysis/MapMean.h"
#include "analysis/MapSummary.h"

#include <QByteArrayList>
#include <QString>
#include <QStringList>

#include <optional>

/// What the analysis of one map found: a row of maps.csv.
struct MapRow {
    QString map; ///< its name
    std::optional<Method> method;
    int columns = 0;
    int rows = 0;
    MapSummary summary;
    std::optional<MapMean> mean; ///< where the noise of the images is known
    std::size_t meaningless = 0; ///< then: pixels that have a valence which means nothing
    ReferenceValences valences;
    QString refusal;      ///< why there is no map; then there are no figures
    QStringList messages; ///< the lines of the calculation
    QStringList warnings; ///< what a physicist would doubt; no column has them

    /// Nothing was refused, and some pixel has a finite result.
    bool isGood() const;
};

/// The names of the columns, and the fields of a row.
QByteArrayList mapColumns();
QByteArrayList mapFields(const MapRow& row);
