#include "input/NumberText.h"

double numberFromText(const QString& text)
{
    return text.toDouble();
}

QString textFromNumber(double value)
{
    return QString::number(value, 'g', 6);
}

double numberFromToken(const char* first, const char* last)
{
    return numberFromText(QString::fromLocal8Bit(first, static_cast<int>(last - first)));
}
