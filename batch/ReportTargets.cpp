#include "batch/Report.h"

#include "analysis/Constants.h"

#include <cmath>

namespace
{

/// Of the refused rows, and of the others, the page lists so many.
constexpr std::size_t mostRows = 2000;

/// Where the references' part is not known, the target's alone.
double together(double own, double common)
{
    return std::isfinite(common) ? std::hypot(own, common) : own;
}

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

void ReportTargets::add(const QByteArrayList& fields, const QByteArray& unseen)
{
    const std::size_t place = m_trend.size();
    const auto number = [&](const char* column) { return numberOf(field(fields, column)); };
    const double fit = number("lcf_sigma_valence");
    const double fitCommon = number("lcf_sigma_a_ref") * fit / number("lcf_sigma_a");
    m_trend.push_back({number("valence"), number("lcf_valence"),
                       together(number("sigma_valence"), number("sigma_valence_ref")),
                       together(fit, fitCommon)});
    const bool refused = !field(fields, "refusal").isEmpty();
    m_refusedCount += refused ? 1 : 0;
    m_doubtedCount += field(fields, "warnings").isEmpty() ? 0 : 1;
    std::vector<Row>& rows = refused ? m_refused : m_others;
    if (rows.size() < mostRows)
        rows.push_back({place, fields, unseen});
}
