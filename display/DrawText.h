#pragma once

#include <QColor>
#include <QObject>
#include <QRectF>
#include <QVector>

class QFont;
class QPainter;
class QString;

/// By how much a text is too large for a box: the larger of the ratios of width and height, a side
/// without length counting as 1, and 1 for a text without size. A box of negative height (y grows
/// upward on a graph) is fitted by its width alone.
/// @return never zero or negative, never not-a-number
double textExcess(double textWidth, double textHeight, double boxWidth, double boxHeight);

/// Graph text: scaled so that it fills a box.
class DrawText : public QObject
{
    Q_OBJECT

public:
    explicit DrawText(QObject* parent = nullptr);

    int current = -1;
    QVector<QRectF> items; ///< boxes that labels have taken
    QColor borderColor{0, 220, 220};
    QColor onColor{170, 255, 170};
    QColor offColor{140, 180, 140};
    QColor textColor{0, 0, 0};

    /// Draws a text in a box. The painter's font is `font` afterwards.
    /// @param flags    Qt::AlignmentFlag
    /// @param mode     1 fits the default font to the box, anything else draws with `font`
    /// @param maxSize  largest size in points in mode 1; no limit where it is not positive
    /// @param debug    writes the size used to the debug output
    /// @return in mode 1 the text's bounding box at 10 points, else an empty rectangle at (0, 0)
    static QRectF putText(QPainter* p, QRectF box, const QFont& font, int flags, int mode,
                          const QString& text, double maxSize, bool debug);

    /// Largest size in points at which the ink of a line of text in the default font, centred
    /// vertically in a box, stays within a distance in pixels from the middle of the box.
    /// @param above    room over the middle
    /// @param below    room under the middle
    /// @param maxSize  size in points (> 0) that is kept where it fits
    /// @return at least the smallest readable size
    static double sizeWithin(const QPainter& p, const QString& text, double above, double below,
                             double maxSize);

    /// The box that a text would take, in mode 1 at the size fitted in whole points, else at the
    /// size of `font`. Draws nothing; `font` and the painter's font stay as they are.
    static QRectF measureText(QPainter* p, QRectF box, QFont& font, int flags, int mode,
                              const QString& text);

    /// A legend entry: a square of side h that stands on y, with its text at the right.
    void drawLegendBox(QPainter* p, bool on, const QString& text, int x, int width, int y,
                       int h) const;

    void addItem(QRectF box);
    /// True where a box meets one that is taken.
    bool overlaps(QRectF box) const;
};
