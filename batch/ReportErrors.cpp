#include "batch/ReportErrors.h"

#include "analysis/Constants.h"
#include "batch/HtmlText.h"
#include "batch/UnseenErrors.h"
#include "batch/ValenceText.h"
#include "text/NumberText.h"

#include <cmath>
#include <vector>

namespace
{

/// What counting does not see takes a dozen lines for each target.
constexpr std::size_t mostDetails = 200;

using Number = std::optional<double>;

/// The listed rows that have a valence, by the point method or by the fit alone.
std::vector<const ReportTargets::Row*> rowsWithValence(const ReportTargets& targets)
{
    std::vector<const ReportTargets::Row*> found;
    for (const auto* rows : {&targets.refusedRows(), &targets.otherRows()})
        for (const ReportTargets::Row& row : *rows)
            if (!targets.field(row.fields, "valence").isEmpty() ||
                !targets.field(row.fields, "lcf_valence").isEmpty())
                found.push_back(&row);
    return found;
}

/// The fields of a row as numbers.
class Figures
{
public:
    Figures(const ReportTargets& targets, const ReportTargets::Row& row)
        : m_targets(targets), m_row(row)
    {
    }

    Number operator()(const char* column) const
    {
        bool good = false;
        const double value = m_targets.field(m_row.fields, column).toDouble(&good);
        return good && std::isfinite(value) ? Number(value) : Number();
    }

private:
    const ReportTargets& m_targets;
    const ReportTargets::Row& m_row;
};

struct ReportedClosure {
    double ref1 = notANumber;
    double ref2 = notANumber;

    bool isThere() const { return std::isfinite(ref1) && std::isfinite(ref2); }
    bool isDoubtful() const
    {
        constexpr double acceptable = 0.05;
        return isThere() && (std::abs(ref1 - 1.0) > acceptable || std::abs(ref2) > acceptable);
    }
};

/// That of the first row which has one; it is the same for all.
ReportedClosure closureOf(const ReportTargets& targets)
{
    for (const ReportTargets::Row* row : rowsWithValence(targets)) {
        const Figures figure(targets, *row);
        const ReportedClosure closure{figure("closure_ref1").value_or(notANumber),
                                      figure("closure_ref2").value_or(notANumber)};
        if (closure.isThere())
            return closure;
    }
    return {};
}

QString threeDecimals(double value)
{
    constexpr double none = 0.0005;
    return QString::number(std::abs(value) < none ? 0.0 : value, 'f', 3);
}

QString closureText(const ReportedClosure& closure, const OutputWords& words)
{
    return words("Closure: with Ref 1 and Ref 2 in the target's place the method finds a = %1 and "
                 "%2; it should find 1 and 0.")
        .arg(threeDecimals(closure.ref1), threeDecimals(closure.ref2));
}

QByteArray paragraph(const QString& text)
{
    return "<p>" + htmlText(text) + "</p>\n";
}

QByteArray cell(const QString& text)
{
    return "<td>" + htmlText(text) + "</td>";
}

/// A cell of a whole statement, which needs some width.
QByteArray statement(const QString& text)
{
    return "<td class=\"sure\">" + htmlText(text) + "</td>";
}

/// The deviation of the fit that all targets share stands in the table for `a` alone.
Number fitCommon(const Figures& figure)
{
    const Number sigma = figure("lcf_sigma_valence");
    const Number ofA = figure("lcf_sigma_a");
    const Number common = figure("lcf_sigma_a_ref");
    return sigma && ofA && common && *ofA > 0.0 ? Number(*common * *sigma / *ofA) : Number();
}

/// "2.659 to 2.662"; that it has no bounds where there are deviations, but no ends.
QString intervalText(const Figures& figure, const OutputWords& words)
{
    const Number low = figure("valence_low");
    const Number high = figure("valence_high");
    if (low && high)
        return words("%1 to %2").arg(endText(*low, *high - *low), endText(*high, *high - *low));
    return figure("sigma_valence") && figure("sigma_valence_ref") ? words("has no bounds")
                                                                  : QString();
}

QByteArray errorRow(const ReportTargets& targets, const ReportTargets::Row& row,
                    const OutputWords& words)
{
    const Figures figure(targets, row);
    const Number valence = figure("valence");
    const Number fit = figure("lcf_valence");
    const Number leak = figure("dvalence_leak");
    QString points;
    if (valence)
        points = valenceText({*valence, figure("sigma_valence"), figure("sigma_valence_ref"),
                              figure("dvalence_shift")},
                             words);
    QString ofFit;
    if (fit)
        ofFit = valenceText({*fit, figure("lcf_sigma_valence"), fitCommon(figure), {}}, words);
    return "<tr><td class=\"number\">" + QByteArray::number(qulonglong{row.place} + 1) +
           "</td><th scope=\"row\"><bdi>" + htmlText(targets.field(row.fields, "target")) +
           "</bdi></th>" + statement(points) + cell(intervalText(figure, words)) +
           cell(leak ? changeText(*leak) : QString()) + statement(ofFit) + "</tr>\n";
}

QByteArray errorTable(const ReportFacts& facts, const OutputWords& words)
{
    QByteArray html = "<table>\n<thead>\n<tr>";
    for (const QString& title : {words("No."), words("Target"), words("Valence"),
                                 words("%1 % interval").arg(textFromNumber(100.0 * facts.level)),
                                 words("1 % of leaked light"), words("Valence (fit)")})
        html += "<th scope=\"col\">" + htmlText(title) + "</th>";
    html += "</tr>\n</thead>\n<tbody>\n";
    for (const ReportTargets::Row* row : rowsWithValence(facts.targets))
        html += errorRow(facts.targets, *row, words);
    return scrollingHtml(words("How sure the valences are"), html + "</tbody>\n</table>\n");
}

/// A sentence for each figure.
QByteArray meanings(const ReportFacts& facts, const OutputWords& words)
{
    QByteArray html = "<ul class=\"hint\">\n";
    for (const QString& text :
         {words("± (counting): standard deviation by the noise of the target alone; measuring it "
                "longer makes it smaller."),
          words("± (references): standard deviation by the noise of references and blank, the same "
                "error in all targets; a mean over targets does not make it smaller."),
          words("for +0.1 eV: by how much the valence changes where the target's energies are 0.1 "
                "eV higher; counting does not see it, and it often limits the result."),
          words("%1 % interval: where the same method would find the valence without noise, by "
                "both deviations together; it has no bounds where the target is too thin or too "
                "noisy.")
              .arg(textFromNumber(100.0 * facts.level)),
          words("1 % of leaked light: by how much the valence changes where 1 % of the light goes "
                "past the sample; mu-t is taken for absolute."),
          words(
              "Closure: far from 1 and 0 the crossings or the thickness ratio are wrong; an error "
              "of the target alone does not show in it.")})
        html += "<li>" + htmlText(text) + "</li>\n";
    return html + "</ul>\n";
}

QByteArray details(const ReportTargets& targets, const OutputWords& words)
{
    QByteArray html;
    std::size_t count = 0;
    for (const ReportTargets::Row* row : rowsWithValence(targets)) {
        const QStringList lines = unseenLines(unseenFromText(row->unseen), words);
        if (lines.isEmpty() || ++count > mostDetails)
            continue;
        html += (targets.count() == 1 ? "<details open>" : "<details>") +
                ("<summary>" + htmlText(words("What counting does not see:"))) + " <bdi>" +
                htmlText(targets.field(row->fields, "target")) + "</bdi></summary>\n<ul>\n";
        for (const QString& line : lines)
            html += "<li>" + htmlText(line) + "</li>\n";
        html += "</ul>\n</details>\n";
    }
    if (count > 1)
        html = scrollingHtml(words("What counting does not see:"), html);
    if (count > mostDetails)
        html += paragraph(words("What counting does not see of %1 more targets is told by "
                                "drovik-batch --verbose.")
                              .arg(count - mostDetails));
    return html;
}

/// What limits the results where it is no counting; empty where it is.
QByteArray limit(const ReportTargets& targets, const OutputWords& words)
{
    int known = 0;
    int limited = 0;
    for (const ReportTargets::Row* row : rowsWithValence(targets)) {
        const Figures figure(targets, *row);
        const Number sigma = figure("sigma_valence");
        const Number shift = figure("dvalence_shift");
        if (!sigma || !shift)
            continue;
        ++known;
        const double common = figure("sigma_valence_ref").value_or(0.0);
        limited += std::abs(*shift) > std::hypot(*sigma, common) ? 1 : 0;
    }
    if (limited == 0)
        return {};
    return paragraph(words("In %1 of %2 targets 0.1 eV of the energy changes the valence by more "
                           "than its standard deviation: not counting limits them, but how well "
                           "the energies are known.")
                         .arg(limited)
                         .arg(known));
}

bool hasErrors(const ReportTargets& targets)
{
    for (const ReportTargets::Row* row : rowsWithValence(targets)) {
        const Figures figure(targets, *row);
        for (const char* column : {"sigma_valence", "lcf_sigma_valence", "dvalence_shift"})
            if (figure(column))
                return true;
    }
    return false;
}

} // namespace

QByteArray closureAlarm(const ReportFacts& facts, const OutputWords& words)
{
    const ReportedClosure closure = closureOf(facts.targets);
    if (!closure.isDoubtful())
        return {};
    return R"(<p class="alarm" role="alert"><strong>)" +
           htmlText(words("The valences are doubtful.")) + "</strong> " +
           htmlText(closureText(closure, words)) + ' ' +
           htmlText(words("The crossings or the thickness ratio are wrong.")) + "</p>\n";
}

QByteArray errorsSection(const ReportFacts& facts, const OutputWords& words)
{
    if (!hasErrors(facts.targets))
        return {};
    QByteArray html =
        "<section id=\"errors\">\n<h2>" + htmlText(words("How sure the valences are")) + "</h2>\n";
    if (const ReportedClosure closure = closureOf(facts.targets); closure.isThere())
        html += paragraph(closureText(closure, words));
    return html + limit(facts.targets, words) + errorTable(facts, words) + meanings(facts, words) +
           details(facts.targets, words) + "</section>\n";
}
