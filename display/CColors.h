#pragma once

#include <QColor>
#include <QObject>
#include <QVector>

/// The palette from which a graph takes the colour of its n-th curve.
class CColors : public QObject
{
    Q_OBJECT

public:
    QVector<QColor> colors;

    /// The base palette, at least 40 colours.
    CColors();
    /// The base palette, extended to at least n colours.
    explicit CColors(int n);
    /// The given list, extended to at least n colours; an empty list stays empty.
    CColors(const QVector<QColor>& base, int n);

private:
    void extendTo(int n);
};
