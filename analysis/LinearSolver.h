#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

/// Dense linear equations of a few unknowns: LU decomposition with a row permutation, then
/// forward and back substitution (Golub & Van Loan, Matrix Computations, ch. 3).
///
/// The sizes are known at compile time, so that a fit for each pixel of a map costs no memory
/// from the heap. Nothing is reported: a singular system gives infinities or not-a-number.

template <std::size_t n>
using Vector = std::array<double, n>;
template <std::size_t n>
using Matrix = std::array<std::array<double, n>, n>; ///< [row][column]
template <std::size_t n>
using Permutation = std::array<std::size_t, n>;

/// Row that becomes the k-th pivot: the candidate's magnitude is compared with the *index* of the
/// best row so far, not with the best magnitude. Results of the program are defined by this rule;
/// where it differs from textbook partial pivoting the last digits differ too.
template <std::size_t n>
std::size_t pivotRow(const Matrix<n>& a, const Permutation<n>& perm, std::size_t k)
{
    std::size_t best = k;
    for (std::size_t j = k; j < n; ++j)
        if (std::abs(a[perm[j]][k]) > static_cast<double>(best))
            best = j;
    return best;
}

/// Takes the pivot's line from the later ones so that their k-th entry vanishes; the multiplier is
/// kept in its place. A pivot of exactly zero counts as 1.
template <std::size_t n>
void eliminate(Matrix<n>& a, const Permutation<n>& perm, std::size_t k)
{
    const auto& pivotLine = a[perm[k]];
    const double pivot = pivotLine[k] == 0.0 ? 1.0 : pivotLine[k];
    for (std::size_t i = k + 1; i < n; ++i) {
        auto& line = a[perm[i]];
        const double multiplier = line[k] / pivot;
        line[k] = multiplier;
        for (std::size_t j = k + 1; j < n; ++j)
            line[j] -= pivotLine[j] * multiplier;
    }
}

/// Splits A into L (1 on the diagonal) and U; the rows of both are addressed through perm.
/// U keeps a pivot of zero.
template <std::size_t n>
void luDecompose(const Matrix<n>& a, Matrix<n>& lower, Matrix<n>& upper, Permutation<n>& perm)
{
    lower = a;
    for (std::size_t i = 0; i < n; ++i)
        perm[i] = i;
    for (std::size_t k = 0; k < n; ++k) {
        std::swap(perm[k], perm[pivotRow<n>(lower, perm, k)]);
        eliminate<n>(lower, perm, k);
    }
    for (std::size_t i = 0; i < n; ++i) {
        auto& l = lower[perm[i]];
        auto& u = upper[perm[i]];
        for (std::size_t j = 0; j < n; ++j) {
            u[j] = j < i ? 0.0 : l[j];
            if (j >= i)
                l[j] = j == i ? 1.0 : 0.0;
        }
    }
}

/// Solves L y = b; y stays in the order of b's rows.
template <std::size_t n>
void luForward(const Matrix<n>& lower, const Vector<n>& b, Vector<n>& y, const Permutation<n>& perm)
{
    y = b;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const std::size_t r = perm[k];
        y[r] = y[r] / lower[r][k];
        for (std::size_t i = k + 1; i < n; ++i)
            y[perm[i]] -= y[r] * lower[perm[i]][k];
    }
}

/// Solves U x = y; the k-th unknown is x[perm[k]]. A zero on U's diagonal is divided by.
template <std::size_t n>
void luBackward(const Matrix<n>& upper, const Vector<n>& y, Vector<n>& x,
                const Permutation<n>& perm)
{
    x = y;
    for (std::size_t k = n; k-- > 0;) {
        const std::size_t r = perm[k];
        x[r] = x[r] / upper[r][k];
        for (std::size_t i = k; i-- > 0;)
            x[perm[i]] -= x[r] * upper[perm[i]][k];
    }
}

/// The unknowns of A x = b in the order of A's columns.
template <std::size_t n>
Vector<n> solveLinear(const Matrix<n>& a, const Vector<n>& b)
{
    Matrix<n> lower{};
    Matrix<n> upper{};
    Permutation<n> perm{};
    Vector<n> y{};
    Vector<n> x{};
    luDecompose<n>(a, lower, upper, perm);
    luForward<n>(lower, b, y, perm);
    luBackward<n>(upper, y, x, perm);
    Vector<n> unknowns{};
    for (std::size_t k = 0; k < n; ++k)
        unknowns[k] = x[perm[k]];
    return unknowns;
}
