#include "batch/ReportTable.h"

#include "batch/HtmlText.h"
#include "text/NumberText.h"

#include <algorithm>

namespace
{

constexpr std::size_t mostInputs = 4000;

struct Column {
    const char* name; ///< in the CSV file
    const char* title;
    bool isNumber;
    int digits = 6; ///< of a number; as many as the window has, unless fewer mean something
};

constexpr Column shownOfTargets[] = {
    {"target", QT_TRANSLATE_NOOP("Output", "Target"), false},
    {"valence", QT_TRANSLATE_NOOP("Output", "Valence"), true},
    {"lcf_valence", QT_TRANSLATE_NOOP("Output", "Valence (fit)"), true},
    {"a", QT_TRANSLATE_NOOP("Output", "a"), true},
    {"lcf_a", QT_TRANSLATE_NOOP("Output", "a (fit)"), true},
    {"t_ts", QT_TRANSLATE_NOOP("Output", "t/ts"), true},
    {"lcf_r_factor", QT_TRANSLATE_NOOP("Output", "R factor (fit)"), true},
    {"edge_jump", QT_TRANSLATE_NOOP("Output", "Edge jump"), true},
    {"method", QT_TRANSLATE_NOOP("Output", "Method"), false},
};

constexpr Column shownOfMaps[] = {
    {"map", QT_TRANSLATE_NOOP("Output", "Map"), false},
    {"method", QT_TRANSLATE_NOOP("Output", "Method"), false},
    {"columns", QT_TRANSLATE_NOOP("Output", "Columns"), true},
    {"rows", QT_TRANSLATE_NOOP("Output", "Rows"), true},
    {"missing", QT_TRANSLATE_NOOP("Output", "No result"), true},
    {"valence_mean", QT_TRANSLATE_NOOP("Output", "Valence, mean"), true},
    {"sigma_valence_mean", QT_TRANSLATE_NOOP("Output", "± (counting)"), true, 2},
    {"sigma_valence_mean_ref", QT_TRANSLATE_NOOP("Output", "± (references)"), true, 2},
    {"valence_median", QT_TRANSLATE_NOOP("Output", "Valence, median"), true},
    {"valence_sd", QT_TRANSLATE_NOOP("Output", "Valence, standard deviation"), true},
    {"t_mean", QT_TRANSLATE_NOOP("Output", "t/ts, mean"), true},
    {"sigma_t_mean", QT_TRANSLATE_NOOP("Output", "± (counting)"), true, 2},
    {"sigma_t_mean_ref", QT_TRANSLATE_NOOP("Output", "± (references)"), true, 2},
    {"t_median", QT_TRANSLATE_NOOP("Output", "t/ts, median"), true},
    {"t_sd", QT_TRANSLATE_NOOP("Output", "t/ts, standard deviation"), true},
    {"below", QT_TRANSLATE_NOOP("Output", "Below the histogram"), true},
    {"above", QT_TRANSLATE_NOOP("Output", "Above the histogram"), true},
    {"refusal", QT_TRANSLATE_NOOP("Output", "Refusal"), false},
};

/// The file has all digits.
QByteArray numberText(const QByteArray& field, int digits)
{
    bool good = false;
    const double value = field.toDouble(&good);
    return good ? QByteArray::number(value, 'g', digits) : htmlText(field);
}

QByteArray textCell(const QByteArray& field)
{
    return "<td><bdi>" + htmlText(field) + "</bdi></td>";
}

QByteArray cell(const QByteArray& field, const Column& column)
{
    return column.isNumber ? "<td class=\"number\">" + numberText(field, column.digits) + "</td>"
                           : textCell(field);
}

QByteArray rowHeading(const QByteArray& field)
{
    return "<th scope=\"row\"><bdi>" + htmlText(field) + "</bdi></th>";
}

QByteArray heading(const QString& title, bool isNumber)
{
    return QByteArray(R"(<th scope="col" aria-sort="none")") +
           (isNumber ? " class=\"number\"" : "") + "><button type=\"button\">" + htmlText(title) +
           "</button></th>";
}

/// A table that scrolls by itself where the screen is narrow.
QByteArray scrolling(const QString& label, const QByteArray& head, const QByteArray& body)
{
    return scrollingHtml(label, "<table class=\"sortable\">\n<thead>\n<tr>" + head +
                                    "</tr>\n</thead>\n<tbody>\n" + body + "</tbody>\n</table>\n");
}

QByteArray remarks(const ReportTargets& targets, const QByteArrayList& fields,
                   const OutputWords& words)
{
    const QByteArray refusal = targets.field(fields, "refusal");
    const QByteArray warnings = targets.field(fields, "warnings");
    QByteArray html;
    if (!refusal.isEmpty())
        html += "<strong>" + htmlText(words("Refused:")) + "</strong> <bdi>" +
                htmlText(words.line(QString::fromUtf8(refusal))) + "</bdi>";
    if (!warnings.isEmpty())
        html += (html.isEmpty() ? "" : "<br>") + ("<em>" + htmlText(words("Doubtful:"))) +
                "</em> <bdi>" + htmlText(warnings) + "</bdi>";
    return html;
}

QByteArray targetRow(const ReportTargets& targets, const ReportTargets::Row& row,
                     const OutputWords& words)
{
    const bool refused = !targets.field(row.fields, "refusal").isEmpty();
    QByteArray html = refused ? "<tr class=\"refused\">" : "<tr>";
    html += "<td class=\"number\">" + QByteArray::number(qulonglong{row.place} + 1) + "</td>";
    for (const Column& column : shownOfTargets)
        html += &column == shownOfTargets ? rowHeading(targets.field(row.fields, column.name))
                                          : cell(targets.field(row.fields, column.name), column);
    return html + "<td>" + remarks(targets, row.fields, words) + "</td></tr>\n";
}

} // namespace

QByteArray targetsTable(const ReportTargets& targets, const OutputWords& words)
{
    QByteArray head = heading(words("No."), true);
    for (const Column& column : shownOfTargets)
        head += heading(words(column.title), column.isNumber);
    head += heading(words("Remarks"), false);
    QByteArray body;
    for (const auto* rows : {&targets.refusedRows(), &targets.otherRows()})
        for (const ReportTargets::Row& row : *rows)
            body += targetRow(targets, row, words);
    QByteArray html = scrolling(words("Targets"), head, body);
    const std::size_t listed = targets.refusedRows().size() + targets.otherRows().size();
    if (listed < targets.count())
        html +=
            "<p>" +
            htmlText(words("%1 more targets are in results.csv.").arg(targets.count() - listed)) +
            "</p>\n";
    return html;
}

QByteArray mapsTable(const ReportFacts& facts, const OutputWords& words)
{
    QByteArray head;
    for (const Column& column : shownOfMaps)
        head += heading(words(column.title), column.isNumber);
    QByteArray body;
    for (const ReportMap& map : facts.maps) {
        body += "<tr>";
        for (const Column& column : shownOfMaps) {
            const QByteArray field = map.fields.value(facts.mapColumns.indexOf(column.name));
            if (&column == shownOfMaps)
                body += rowHeading(field);
            else if (qstrcmp(column.name, "refusal") == 0)
                body += textCell(words.line(QString::fromUtf8(field)).toUtf8());
            else
                body += cell(field, column);
        }
        body += "</tr>\n";
    }
    return scrolling(words("Maps"), head, body);
}

QByteArray inputsTable(const std::vector<ReportInput>& inputs, const OutputWords& words)
{
    QByteArray body;
    const std::size_t listed = std::min(inputs.size(), mostInputs);
    for (std::size_t i = 0; i < listed; ++i)
        body += "<tr>" + rowHeading(inputs[i].path) + "<td><code>" + htmlText(inputs[i].sha256) +
                "</code></td></tr>\n";
    QByteArray html =
        scrolling(words("Inputs"),
                  heading(words("File"), false) + heading(QStringLiteral("SHA-256"), false), body);
    if (listed < inputs.size())
        html += "<p>" +
                htmlText(words("%1 more files are in run.sqlite.").arg(inputs.size() - listed)) +
                "</p>\n";
    return html;
}
