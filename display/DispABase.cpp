#include "display/DispABase.h"

#include "display/FramePainter.h"
#include "display/PopBase.h"
#include "text/NumberText.h"

DispABase::DispABase(QWidget* parent)
    : QFrame(parent), graph(graphOfForm()), pop(std::make_unique<PopBase>()),
      popLayout(pop->PopLayout)
{
    connect(DispA, &DispArea::nowPos, this, &DispABase::receiveNowPos);
    connect(DispA, &DispArea::draw, this, &DispABase::receiveDraw);
    connect(this, &DispABase::draw, pop.get(), &PopBase::update);
    connect(PopDockB, &QPushButton::clicked, this, &DispABase::popDock);
    connect(pop.get(), &PopBase::closed, this, &DispABase::popDock);
    connect(DispA, &DispArea::mPressed, this, &DispABase::mPressed);
    connect(DispA, &DispArea::mDragging, this, &DispABase::mDragging);
    connect(DispA, &DispArea::mReleased, this, &DispABase::mReleased);
    connect(DispA, &DispArea::mDClicked, this, &DispABase::mDClicked);
}

DispABase::~DispABase() = default;

void DispABase::setTitle(const QString& title)
{
    Title->setText(title);
    DispA->setAccessibleName(title);
    const QString part = QStringLiteral("%1, %2");
    XPos->setAccessibleName(part.arg(title, label->text().trimmed()));
    YPos->setAccessibleName(part.arg(title, label_2->text().trimmed()));
    PopDockB->setAccessibleName(part.arg(title, PopDockB->text()));
}

void DispABase::setRangeOnce(double x0, double y0, double x1, double y1)
{
    graph.setRangeOnce(x0, y0, x1, y1);
}

void DispABase::setXYTitle(const QString& x, const QString& y)
{
    xTitle = x;
    yTitle = y;
    XTitle->setText(xTitleInGraph ? QString() : x);
    YTitle->setText(yTitleInGraph ? QString() : y);
}

void DispABase::receiveNowPos(double x, double y)
{
    XPos->setText(textFromNumber(x));
    YPos->setText(textFromNumber(y));
}

void DispABase::receiveDraw(QStylePainter* painter)
{
    emit draw(painter);
    if (DispA->coord.valid == 1)
        drawXYTitle(painter);
}

void DispABase::popDock()
{
    if (docked) {
        popLayout->addWidget(DispABFrame, 0, 0);
        pop->show();
    } else {
        PanelLayout->addWidget(DispABFrame, 1, 0);
        pop->hide();
    }
    docked = !docked;
}

void DispABase::drawXYTitle(QStylePainter* painter)
{
    drawAxisTitles(*painter, graph);
}

GraphFrame& DispABase::graphOfForm()
{
    setupUi(this);
    return DispA->graph;
}
