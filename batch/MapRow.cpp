#include "batch/MapRow.h"

#include "analysis/Constants.h"
#include "batch/MethodName.h"
#include "text/Csv.h"

#include <cmath>

namespace
{

/// Of the means; what is not known has an empty field.
QByteArrayList sigmaFields(const MapRow& row)
{
    const auto field = [&row](auto value) {
        const double number = row.mean ? value(*row.mean) : notANumber;
        return csv::number(std::isfinite(number) ? std::optional(number) : std::nullopt);
    };
    const double perA = std::abs(row.valences.ref1 - row.valences.ref2);
    return {field([perA](const MapMean& mean) { return mean.sigmaA * perA; }),
            field([perA](const MapMean& mean) { return mean.sigmaARef * perA; }),
            field([](const MapMean& mean) { return mean.sigmaT; }),
            field([](const MapMean& mean) { return mean.sigmaTRef; }),
            field([](const MapMean& mean) { return mean.biasT; })};
}

} // namespace

bool MapRow::isGood() const
{
    return refusal.isEmpty() && summary.missing < summary.pixels;
}

QByteArrayList mapColumns()
{
    return {"map",
            "method",
            "columns",
            "rows",
            "pixels",
            "missing",
            "valence_mean",
            "valence_median",
            "valence_sd",
            "t_mean",
            "t_median",
            "t_sd",
            "below",
            "above",
            "sigma_valence_mean",
            "sigma_valence_mean_ref",
            "sigma_t_mean",
            "sigma_t_mean_ref",
            "t_bias",
            "refusal"};
}

QByteArrayList mapFields(const MapRow& row)
{
    const bool there = row.refusal.isEmpty();
    const auto whole = [there](auto number) {
        return there ? QByteArray::number(static_cast<qulonglong>(number)) : QByteArray();
    };
    const MapSummary& found = row.summary;
    QByteArrayList fields{row.map.toUtf8(),    row.method ? methodName(*row.method) : QByteArray(),
                          whole(row.columns),  whole(row.rows),
                          whole(found.pixels), whole(found.missing)};
    for (const Spread& spread : {found.valence, found.thickness})
        fields << csv::number(spread.mean) << csv::number(spread.median)
               << csv::number(spread.deviation);
    fields << whole(found.below) << whole(found.above);
    return fields << sigmaFields(row) << row.refusal.toUtf8();
}
