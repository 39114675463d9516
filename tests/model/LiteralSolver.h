#pragma once

#include <QVector>

/// The small linear solver once more, step by step in the order of the rule: decomposition with
/// the program's own choice of pivot, then the two substitutions.
namespace literal
{

using Matrix = QVector<QVector<double>>;

/// The unknowns of the n equations, in the order of the columns. A singular system gives
/// infinities or not-a-number.
QVector<double> solve(const Matrix& equations, const QVector<double>& right);

} // namespace literal
