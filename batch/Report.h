#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <vector>

/// A file that a job read.
struct ReportInput {
    QByteArray path;   ///< as the job has it, never absolute by our doing
    QByteArray sha256; ///< in hexadecimal digits
};

/// Rows of results.csv on their way into the report. However many there are, the memory is some
/// bytes a row: the page lists so many, those with a refusal first, and says how many it leaves to
/// the file.
class ReportTargets
{
public:
    /// @param columns  as of results.csv
    explicit ReportTargets(QByteArrayList columns);

    /// The next row in the job's order, its fields as in results.csv before they are quoted.
    /// @param unseen  of unseenText()
    void add(const QByteArrayList& fields, const QByteArray& unseen = {});

    /// A row as the page lists it.
    struct Row {
        std::size_t place; ///< in the job's order, from 0
        QByteArrayList fields;
        QByteArray unseen; ///< what counting does not see
    };
    /// A point of the trend; not-a-number where there is none.
    struct Point {
        double valence;
        double lcfValence;
        double sigma;    ///< of the valence, by target and references together
        double lcfSigma; ///< of the fit's, likewise
    };

    /// A field of a row by its column's name; empty where there is no such column.
    QByteArray field(const QByteArrayList& fields, const char* column) const;

    const QByteArrayList& columns() const { return m_columns; }
    std::size_t count() const { return m_trend.size(); }
    std::size_t refused() const { return m_refusedCount; }
    std::size_t doubted() const { return m_doubtedCount; } ///< with a warning
    const std::vector<Row>& refusedRows() const { return m_refused; }
    const std::vector<Row>& otherRows() const { return m_others; }
    const std::vector<Point>& trend() const { return m_trend; }

private:
    QByteArrayList m_columns;
    std::vector<Row> m_refused;
    std::vector<Row> m_others;
    std::vector<Point> m_trend;
    std::size_t m_refusedCount = 0;
    std::size_t m_doubtedCount = 0;
};

/// A map of the job.
struct ReportMap {
    QByteArrayList fields; ///< a row of maps.csv
    QStringList pictures;  ///< files of drawMapPictures, which the page takes into itself
    QByteArray readOut;    ///< of mapReadOut; empty where the map was refused
};

/// All that a report shows. No times, threads or absolute paths: the same job on the same inputs
/// has the same report, byte for byte, however the run went.
struct ReportFacts {
    QString language = QStringLiteral("en"); ///< or "ja"
    QByteArray jobName;                      ///< the job file's name, without folder
    QByteArray jobText;                      ///< as it stands in the file
    QByteArray version;                      ///< of the program
    std::vector<ReportInput> inputs;
    ReportTargets targets{{}};
    double level = 0.683; ///< of the intervals of the valences
    QStringList
        graphs; ///< files of drawReferenceGraphs and drawComparisonGraph, taken into the page
    QByteArrayList mapColumns;
    std::vector<ReportMap> maps;
    QByteArrayList messages; ///< lines of the run in the job's order
};

/// The report as one HTML page that needs nothing beside it. Texts may hold any bytes. A picture
/// that cannot be read is named as missing.
QByteArray reportPage(const ReportFacts& facts);
