#include "batch/MapRow.h"

#include "batch/MethodName.h"
#include "text/Csv.h"

bool MapRow::isGood() const
{
    return refusal.isEmpty() && summary.missing < summary.pixels;
}

QByteArrayList mapColumns()
{
    return {"map",      "method",       "columns",        "rows",       "pixels",
            "missing",  "valence_mean", "valence_median", "valence_sd", "t_mean",
            "t_median", "t_sd",         "below",          "above",      "refusal"};
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
    return fields << whole(found.below) << whole(found.above) << row.refusal.toUtf8();
}
