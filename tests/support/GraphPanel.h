#pragma once

#include "display/DispABase.h"
#include "tests/support/CanvasActions.h"

#include <functional>

/// A graph panel with a canvas of 400 x 300 pixels, whose plot area goes from (40, 15) to
/// (380, 270).
class GraphPanel : public DispABase
{
public:
    using Paint = std::function<void(QPainter&, GraphFrame&)>;

    explicit GraphPanel(const Paint& paint)
    {
        xTitleInGraph = true;
        yTitleInGraph = true;
        setXYTitle(QStringLiteral("x"), QStringLiteral("y"));
        DispA->setFixedSize(400, 300);
        QObject::connect(this, &DispABase::draw, this,
                         [this, paint](QStylePainter* painter) { paint(*painter, graph); });
    }

    QImage picture() { return canvas::picture(DispA); }
    const ChCoord& coord() const { return DispA->coord; }

    /// The picture without margins and frame.
    QImage plot() { return picture().copy(QRect(QPoint(41, 16), QPoint(379, 269))); }

    /// True if nothing was painted but white, titles included.
    bool isWhite()
    {
        const QImage image = picture();
        return canvas::count(image, Qt::white) == image.width() * image.height();
    }
};
