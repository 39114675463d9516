#include "batch/Report.h"

#include "batch/HtmlText.h"
#include "batch/OutputWords.h"
#include "batch/ReportErrors.h"
#include "batch/ReportMaps.h"
#include "batch/ReportTable.h"
#include "batch/ReportTrend.h"

#include <QFile>

// Resources of a library are at hand once it has been asked for; outside any namespace.
static void initialiseResources()
{
    Q_INIT_RESOURCE(report);
}

namespace
{

QByteArray resource(const QString& name)
{
    QFile file(QStringLiteral(":/report/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray head(const ReportFacts& facts, const OutputWords& words, const QString& title)
{
    // The page asks nobody for anything; the policy has the browser see to it.
    return "<!DOCTYPE html>\n<html lang=\"" + QByteArray(words.japanese() ? "ja" : "en") +
           "\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
           "img-src data:; style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"generator\" content=\"drovik " +
           htmlText(facts.version) + "\">\n<title>" + htmlText(title) + "</title>\n<style>\n" +
           resource(QStringLiteral("report.css")) + "</style>\n</head>\n<body>\n";
}

QByteArray figure(const QString& title, std::size_t number)
{
    return "<div><dt>" + htmlText(title) + "</dt><dd>" +
           QByteArray::number(static_cast<qulonglong>(number)) + "</dd></div>\n";
}

std::size_t refusedMaps(const ReportFacts& facts)
{
    const int refusal = facts.mapColumns.indexOf("refusal");
    std::size_t count = 0;
    for (const ReportMap& map : facts.maps)
        count += map.fields.value(refusal).isEmpty() ? 0 : 1;
    return count;
}

QByteArray summary(const ReportFacts& facts, const OutputWords& words, const QString& title)
{
    QByteArray html = "<header>\n<h1>" + htmlText(title) + "</h1>\n<dl class=\"figures-of-run\">\n";
    html += figure(words("Targets"), facts.targets.count());
    html += figure(words("refused"), facts.targets.refused());
    html += figure(words("with warnings"), facts.targets.doubted());
    if (!facts.maps.empty()) {
        html += figure(words("Maps"), facts.maps.size());
        html += figure(words("maps refused"), refusedMaps(facts));
    }
    return html + "</dl>\n" + closureAlarm(facts, words) + "</header>\n<main>\n";
}

QByteArray targetsSection(const ReportFacts& facts, const OutputWords& words)
{
    if (facts.targets.count() == 0)
        return {};
    QByteArray html = "<section id=\"targets\">\n<h2>" + htmlText(words("Targets")) +
                      "</h2>\n<p class=\"hint\">" +
                      htmlText(words("Refused targets come first. The heading of a column sorts by "
                                     "it. Figures have six digits here and all in results.csv.")) +
                      "</p>\n" + targetsTable(facts.targets, words) + "</section>\n";
    const QByteArray trend = trendFigure(facts.targets.trend(), words);
    if (!trend.isEmpty())
        html += "<section id=\"trend\">\n<h2>" +
                htmlText(words("Valence in the order of the job")) + "</h2>\n" + trend +
                "</section>\n";
    return html;
}

QByteArray messagesSection(const ReportFacts& facts, const OutputWords& words)
{
    QByteArray html = "<section id=\"messages\">\n<h2>" + htmlText(words("Messages")) + "</h2>\n";
    if (facts.messages.isEmpty())
        return html + "<p>" + htmlText(words("There are none.")) + "</p>\n</section>\n";
    html += "<ul>\n";
    for (const QByteArray& message : facts.messages)
        html += "<li><bdi>" + htmlText(words.line(QString::fromUtf8(message))) + "</bdi></li>\n";
    return html + "</ul>\n</section>\n";
}

QByteArray jobSection(const ReportFacts& facts, const OutputWords& words)
{
    return "<section id=\"job\">\n<h2>" + htmlText(words("What was asked")) + "</h2>\n<p><bdi>" +
           htmlText(facts.jobName) + "</bdi></p>\n<pre tabindex=\"0\">" + htmlText(facts.jobText) +
           "</pre>\n<h2>" + htmlText(words("Inputs")) + "</h2>\n" +
           inputsTable(facts.inputs, words) + "</section>\n";
}

} // namespace

QByteArray reportPage(const ReportFacts& facts)
{
    initialiseResources();
    const OutputWords words(facts.language);
    const QString title = words("Report of %1").arg(QString::fromUtf8(facts.jobName));
    QByteArray html = head(facts, words, title);
    html += summary(facts, words, title);
    html += targetsSection(facts, words);
    html += errorsSection(facts, words);
    html += mapsSection(facts, words);
    html += graphsSection(facts, words);
    html += messagesSection(facts, words);
    html += jobSection(facts, words);
    html += "</main>\n<footer><p>" +
            htmlText(words("Made by drovik %1. The page needs no network and no file beside it.")
                         .arg(QString::fromUtf8(facts.version))) +
            "</p></footer>\n<script>\n" + resource(QStringLiteral("report.js")) +
            "</script>\n</body>\n</html>\n";
    return html;
}
