#include "display/PopBase.h"

#include <QCloseEvent>

PopBase::PopBase(QWidget* parent) : QFrame(parent)
{
    setupUi(this);
    resize(800, 600);
}

void PopBase::update()
{
    QFrame::update(QRegion(rect()) - childrenRegion());
}

void PopBase::closeEvent(QCloseEvent* event)
{
    event->accept();
    emit closed();
}
