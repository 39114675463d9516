#include "display/DispABase.h"

#include "display/Pixel.h"
#include "display/PopBase.h"
#include "text/NumberText.h"

#include <cmath>

namespace
{

constexpr double titleMaxSize = 12.0;

/// A title that stays between the canvas's edge and the plot; `above` and `below` are the room on
/// either side of the box's middle.
void putTitle(QStylePainter* painter, const QRectF& box, const QString& title, double above,
              double below)
{
    DrawText::putText(painter, box, QFont(), Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextDontClip,
                      1, title, DrawText::sizeWithin(*painter, title, above, below, titleMaxSize),
                      false);
}

} // namespace

DispABase::DispABase(QWidget* parent)
    : QFrame(parent), pop(std::make_unique<PopBase>()), popLayout(pop->PopLayout)
{
    setupUi(this);
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
    if (DispA->rangeSet)
        return;
    DispA->coord.setRange(x0, y0, x1, y1);
    DispA->rangeSet = true;
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
    const ChCoord& coord = DispA->coord;
    painter->setPen(Qt::black);
    const int h = truncToInt((coord.py1 - coord.py0) / coord.labelDivisions);
    const int b = truncToInt(h * coord.labelHeightRatio);
    if (xTitleInGraph) {
        const QRectF strip(truncToInt(coord.px0), truncToInt(coord.py0) - h,
                           truncToInt(std::fabs(coord.px1 - coord.px0)), b);
        const double middle = strip.center().y();
        putTitle(painter, strip, xTitle, middle - coord.py0, coord.wy0 - middle);
    }
    if (yTitleInGraph) {
        const int w = truncToInt(std::fabs(coord.wy1 - coord.wy0));
        painter->rotate(270.0);
        const QRectF strip(-w, -b, w, b);
        const double middle = strip.center().y();
        putTitle(painter, strip, yTitle, middle, coord.px0 - coord.wx0 - middle);
        painter->rotate(-270.0);
    }
}
