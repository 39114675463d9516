#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// A quantity's correct digits over many cases.
struct DigitCell {
    double median;
    double worst;
    double belowThree; ///< percent of the cases with fewer than three

    /// "7.5 / 5.6", or with a percentage "4.0 / 1.3 (21 %)".
    QString text() const;
};

/// Correct digits of named quantities (the rows) in named conditions (the columns).
class DigitTable
{
public:
    /// The rows and columns that do not exist yet are added at the end.
    void add(const char* column, const char* row, double digits);

    /// Of a row and column with digits in it.
    DigitCell cell(const QString& column, const QString& row) const;

    const QStringList& rows() const { return m_rows; }
    const QStringList& columns() const { return m_columns; }

    /// A table of the document; median / worst (percent below three).
    QString markdown(const QString& caption) const;
    /// A line of that table.
    QString markdownRow(const QString& row) const;

private:
    struct Entry {
        QString column;
        QString row;
        std::vector<double> digits;
    };
    const Entry* find(const QString& column, const QString& row) const;

    QStringList m_rows;
    QStringList m_columns;
    std::vector<Entry> m_entries;
};
