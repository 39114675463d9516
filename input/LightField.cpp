#include "input/LightField.h"

#include <QPalette>
#include <QWidget>

void setBlackText(QWidget& field)
{
    QPalette palette;
    palette.setColor(QPalette::Text, Qt::black);
    field.setPalette(palette);
}
