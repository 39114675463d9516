#pragma once

#include "analysis/PointRow.h"
#include "display/GraphFrame.h"

#include <QPointF>

#include <optional>

class QPainter;

/// The four-point method in the plane of the two references: M2 is mu-t of Ref 1, M3 that of Ref 2,
/// both without the blank.
///
/// Where both valence states absorb alike, the references differ by their thickness alone,
/// M2 = rho M3: all normalization points lie on one line through the origin. The V point lies
/// beside it. The target at the V point, less its background and brought to the thicknesses of the
/// references, lies on the line again, between the level of the V point, where a target of pure
/// Ref 2 would be, and its column, where one of pure Ref 1 would be, and divides the way between
/// them as the valence states are mixed.
struct FourPointGeometry {
    /// An energy point in the plane.
    struct Mark {
        QPointF place;
        bool vPoint; ///< as marked in its row
        bool use;
    };

    std::vector<Mark> marks;       ///< one for each row
    double rho = 0.0;              ///< thickness ratio of Ref 1 to Ref 2
    std::optional<QPointF> v;      ///< the V point
    std::optional<QPointF> target; ///< the target's place on the line of equal absorption

    QPointF pureRef1() const { return {v->x(), v->x() / rho}; }
    QPointF pureRef2() const { return {rho * v->y(), v->y()}; }
    /// Fraction of Ref 1 as the lengths in the graph show it; needs the target.
    double fraction() const;
};

/// @param rho  thickness ratio of Ref 1 to Ref 2, of the type chosen
/// @return no V point where none is chosen, no target with fewer than three normalization points
FourPointGeometry fourPointGeometry(const PointRows& rows, double rho);

/// Ends of both axes.
struct PlaneRange {
    AxisEnds x;
    AxisEnds y;
};

/// What shows the origin, the rows in use (all rows where none is), and the places of the target
/// and of the pure references on the line, with a twentieth more on every side.
PlaneRange fourPointRange(const FourPointGeometry& geometry);

/// "M2/M3": the four-point geometry.
void drawFourPointGraph(QPainter& painter, GraphFrame& frame, const PointRows& rows, double rho);
