#include "display/MarkLines.h"

#include "display/MarkLine.h"
#include "text/NumberText.h"

#include <QLineEdit>

MarkLines::MarkLines(QObject* parent) : QObject(parent) {}

void MarkLines::clear()
{
    lines.clear();
    isMoving = false;
    selected = -1;
}

double MarkLines::origin(int i) const
{
    const MarkLine* line = lines[i];
    const bool hasReference =
        line->relative && line->refIndex >= 0 && line->refIndex < lines.size();
    return hasReference ? lines[line->refIndex]->number() : 0.0;
}

double MarkLines::position(int i) const
{
    return lines[i]->number() + origin(i);
}

void MarkLines::moveTo(int i, double position)
{
    lines[i]->edit->setText(textFromNumber(position - origin(i)));
    emit moving();
}
