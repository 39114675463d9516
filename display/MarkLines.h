#pragma once

#include <QObject>
#include <QVector>

class MarkLine;

/// The marker lines of one canvas, or of several that show the same lines, with the state of a
/// drag. The canvas picks and drags; whoever paints the lines reads their fields.
class MarkLines : public QObject
{
    Q_OBJECT

public:
    explicit MarkLines(QObject* parent);

    QVector<MarkLine*> lines; ///< not owned; places in it are what refIndex and selected mean
    bool isMoving = false;    ///< a line is being dragged
    int selected = -1;        ///< the dragged line

    /// Forgets the lines; a drag ends without a signal.
    void clear();
    /// What the number of line i is counted from: the reference line's number for a relative line
    /// (0 where the set has no such line), else 0.
    double origin(int i) const;
    /// Where line i stands, in data units.
    double position(int i) const;
    /// Writes a new position of line i (data units) into its field and emits moving().
    void moveTo(int i, double position);

signals:
    void moving(); ///< the dragged line's field has been rewritten
    void newPos(); ///< a drag has ended
};
