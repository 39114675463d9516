#include "text/NearestName.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace
{

int distance(const QString& a, const QString& b)
{
    // Of the letters of `a` so far to each beginning of b.
    std::vector<int> row(static_cast<std::size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : a) {
        int diagonal = row[0]++;
        for (int k = 0; k < b.size(); ++k) {
            const auto at = static_cast<std::size_t>(k) + 1;
            const int exchanged = diagonal + (letter == b[k] ? 0 : 1);
            diagonal = row[at];
            row[at] = std::min({exchanged, row[at] + 1, row[at - 1] + 1});
        }
    }
    return row.back();
}

} // namespace

QString nearestName(const QString& misspelt, const QStringList& names)
{
    constexpr int longestTried = 100; // no key is longer; the rest would only cost time
    if (misspelt.size() > longestTried)
        return {};
    QString nearest;
    int best = std::max(1, misspelt.size() / 3) + 1;
    for (const QString& name : names) {
        const int steps = distance(misspelt, name);
        if (steps < best) {
            best = steps;
            nearest = name;
        }
    }
    return nearest;
}
