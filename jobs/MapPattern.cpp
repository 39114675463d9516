#include "jobs/MapPattern.h"

namespace
{

const QString rowMark = QStringLiteral("{row}");
const QString energyMark = QStringLiteral("{energy}");

} // namespace

QString mapPattern::fault(const QString& pattern)
{
    bool any = false;
    for (int begin = pattern.indexOf(QLatin1Char('{')); begin >= 0;
         begin = pattern.indexOf(QLatin1Char('{'), begin + 1)) {
        const int end = pattern.indexOf(QLatin1Char('}'), begin);
        if (end < 0)
            return QStringLiteral("has a { without a }");
        const QString mark = pattern.mid(begin, end + 1 - begin);
        if (mark != rowMark && mark != energyMark)
            return QStringLiteral("%1 is not known; known are: {row}, {energy}").arg(mark);
        any = true;
    }
    return any ? QString()
               : QStringLiteral("needs {row} or {energy}, which tell the images of a map apart");
}

QString mapPattern::filled(const QString& pattern, int row, const QString& energy)
{
    QString name = pattern;
    return name.replace(rowMark, QString::number(row)).replace(energyMark, energy);
}
