#include "tests/accuracy/DigitTable.h"

#include <algorithm>

QString DigitCell::text() const
{
    const QString digits = QStringLiteral("%1 / %2").arg(median, 0, 'f', 1).arg(worst, 0, 'f', 1);
    return belowThree == 0.0 ? digits
                             : QStringLiteral("%1 (%2 %)").arg(digits).arg(belowThree, 0, 'f', 0);
}

void DigitTable::add(const char* column, const char* row, double digits)
{
    const QString columnName = QString::fromUtf8(column);
    const QString rowName = QString::fromUtf8(row);
    if (!m_columns.contains(columnName))
        m_columns.append(columnName);
    if (!m_rows.contains(rowName))
        m_rows.append(rowName);
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.column == columnName && entry.row == rowName;
    });
    if (found == m_entries.end())
        m_entries.push_back({columnName, rowName, {digits}});
    else
        found->digits.push_back(digits);
}

const DigitTable::Entry* DigitTable::find(const QString& column, const QString& row) const
{
    for (const Entry& entry : m_entries)
        if (entry.column == column && entry.row == row)
            return &entry;
    return nullptr;
}

DigitCell DigitTable::cell(const QString& column, const QString& row) const
{
    std::vector<double> digits = find(column, row)->digits;
    std::sort(digits.begin(), digits.end());
    const auto below = std::lower_bound(digits.begin(), digits.end(), 3.0) - digits.begin();
    return {digits[digits.size() / 2], digits.front(),
            100.0 * static_cast<double>(below) / static_cast<double>(digits.size())};
}

QString DigitTable::markdown(const QString& caption) const
{
    QString text =
        QStringLiteral("| %1 | %2 |\n|---|").arg(caption, m_columns.join(QStringLiteral(" | ")));
    text += QStringLiteral("---|").repeated(m_columns.size()) + QLatin1Char('\n');
    for (const QString& row : m_rows)
        text += markdownRow(row) + QLatin1Char('\n');
    return text;
}

QString DigitTable::markdownRow(const QString& row) const
{
    QString text = QStringLiteral("| %1 |").arg(row);
    for (const QString& column : m_columns)
        text += QStringLiteral(" %1 |").arg(cell(column, row).text());

    return text;
}
