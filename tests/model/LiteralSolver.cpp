#include "tests/model/LiteralSolver.h"

#include <cmath>
#include <utility>

namespace literal
{

namespace
{

struct Decomposition {
    Matrix lower;
    Matrix upper;
    QVector<int> perm;
};

/// The candidate's magnitude is compared with the index of the best row, not with its magnitude.
int pivotRow(const Matrix& a, const QVector<int>& perm, int k)
{
    int best = k;
    for (int j = k; j < perm.size(); ++j) {
        if (std::fabs(a[perm[j]][k]) > best)
            best = j;
    }
    return best;
}

void eliminateColumn(Matrix& a, const QVector<int>& perm, int k)
{
    const int n = perm.size();
    double pivot = a[perm[k]][k];
    if (pivot == 0.0)
        pivot = 1.0;
    for (int i = k + 1; i < n; ++i) {
        const double multiplier = a[perm[i]][k] / pivot;
        a[perm[i]][k] = multiplier;
        for (int j = k + 1; j < n; ++j)
            a[perm[i]][j] -= a[perm[k]][j] * multiplier;
    }
}

Decomposition decompose(const Matrix& equations)
{
    const int n = equations.size();
    Decomposition d{equations, equations, {}};
    for (int i = 0; i < n; ++i)
        d.perm.append(i);
    for (int k = 0; k < n; ++k) {
        std::swap(d.perm[k], d.perm[pivotRow(d.lower, d.perm, k)]);
        eliminateColumn(d.lower, d.perm, k);
    }
    for (int i = 0; i < n; ++i) {
        const int row = d.perm[i];
        for (int j = 0; j < n; ++j) {
            d.upper[row][j] = j >= i ? d.lower[row][j] : 0.0;
            if (j == i)
                d.lower[row][j] = 1.0;
            else if (j > i)
                d.lower[row][j] = 0.0;
        }
    }
    return d;
}

} // namespace

QVector<double> solve(const Matrix& equations, const QVector<double>& right)
{
    const int n = equations.size();
    const Decomposition d = decompose(equations);
    QVector<double> y = right;
    for (int k = 0; k < n - 1; ++k) {
        const int row = d.perm[k];
        y[row] = y[row] / d.lower[row][k];
        for (int i = k + 1; i < n; ++i)
            y[d.perm[i]] -= y[row] * d.lower[d.perm[i]][k];
    }
    QVector<double> x = y;
    for (int k = n - 1; k >= 0; --k) {
        const int row = d.perm[k];
        x[row] = x[row] / d.upper[row][k];
        for (int i = k - 1; i >= 0; --i)
            x[d.perm[i]] -= x[row] * d.upper[d.perm[i]][k];
    }
    QVector<double> unknowns;
    for (int k = 0; k < n; ++k)
        unknowns.append(x[d.perm[k]]);
    return unknowns;
}

} // namespace literal
