#include "tests/docs/GuideSteps.h"

#include <QRegularExpression>

namespace
{

const QString indentation = QStringLiteral("    ");

/// The first indented block at or after a line.
QString blockAfter(const QStringList& lines, int from)
{
    while (from < lines.size() && !lines[from].startsWith(indentation))
        ++from;
    const auto isOfTheBlock = [&lines](int i) {
        return i < lines.size() && lines[i].startsWith(indentation);
    };
    QStringList block;
    for (int i = from; isOfTheBlock(i) || (isOfTheBlock(i + 1) && lines[i].isEmpty()); ++i)
        block.append(lines[i].mid(indentation.size()));
    return block.join(QLatin1Char('\n'));
}

} // namespace

QVector<GuideStep> guideSteps(const QString& page)
{
    static const QRegularExpression comment(QStringLiteral("^<!-- (do|see|run): (.+) -->$"));
    const QStringList lines = page.split(QLatin1Char('\n'));
    QVector<GuideStep> steps;
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch match = comment.match(lines[i]);
        if (!match.hasMatch())
            continue;
        GuideStep step;
        step.line = i + 1;
        step.words = match.captured(2).split(QLatin1Char(' '));
        if (match.captured(1) != QLatin1String("do"))
            step.shown = blockAfter(lines, i + 1);
        if (match.captured(1) == QLatin1String("see"))
            step.kind = GuideStep::See;
        else if (match.captured(1) == QLatin1String("run"))
            step.kind = GuideStep::Run;
        steps.append(step);
    }
    return steps;
}
