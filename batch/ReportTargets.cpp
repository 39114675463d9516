#include "batch/Report.h"

#include "analysis/Constants.h"

namespace
{

/// Of the refused rows, and of the others, the page lists so many.
constexpr std::size_t mostRows = 2000;

double numberOf(const QByteArray& field)
{
    bool good = false;
    const double value = field.toDouble(&good);
    return good ? value : notANumber;
}

} // namespace

ReportTargets::ReportTargets(QByteArrayList columns) : m_columns(std::move(columns)) {}

QByteArray ReportTargets::field(const QByteArrayList& fields, const char* column) const
{
    return fields.value(m_columns.indexOf(column));
}

void ReportTargets::add(const QByteArrayList& fields)
{
    const std::size_t place = m_trend.size();
    m_trend.push_back({numberOf(field(fields, "valence")), numberOf(field(fields, "lcf_valence"))});
    const bool refused = !field(fields, "refusal").isEmpty();
    m_refusedCount += refused ? 1 : 0;
    m_doubtedCount += field(fields, "warnings").isEmpty() ? 0 : 1;
    std::vector<Row>& rows = refused ? m_refused : m_others;
    if (rows.size() < mostRows)
        rows.push_back({place, fields});
}
