#include "tests/accuracy/CoverageTable.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

void Coverage::add(double deviation, double predictedVariance, bool inOne, bool inTwo)
{
    ++draws;
    inOneSigma += inOne ? 1 : 0;
    inTwoSigma += inTwo ? 1 : 0;
    sum += deviation;
    sumOfSquares += deviation * deviation;
    sumOfVariances += predictedVariance;
}

void Coverage::add(const Coverage& other)
{
    draws += other.draws;
    inOneSigma += other.inOneSigma;
    inTwoSigma += other.inTwoSigma;
    sum += other.sum;
    sumOfSquares += other.sumOfSquares;
    sumOfVariances += other.sumOfVariances;
}

double Coverage::predictedOverFound() const
{
    const double mean = sum / draws;
    return std::sqrt(sumOfVariances / (sumOfSquares - draws * mean * mean));
}

bool holds(const std::optional<Interval>& interval, double value)
{
    return !interval || (interval->low <= value && value <= interval->high);
}

Coverage& CoverageTable::operator[](const QByteArray& name)
{
    const auto found = std::find_if(m_cells.begin(), m_cells.end(),
                                    [&](const auto& cell) { return cell.first == name; });
    if (found != m_cells.end())
        return found->second;
    m_cells.emplace_back(name, Coverage());
    return m_cells.back().second;
}

QByteArray Coverage::text(const QByteArray& name) const
{
    const auto decimals = [](double value, int count) {
        return QByteArray::number(value, 'f', count);
    };
    return "| " + name + " | " + QByteArray::number(draws) + " | " + decimals(percentOne(), 1) +
           " % | " + decimals(percentTwo(), 1) + " % | " + decimals(predictedOverFound(), 3) + " |";
}

QByteArray CoverageTable::range(const QByteArray& name) const
{
    std::array<double, 6> ends{100.0, 0.0, 100.0, 0.0, 100.0, 0.0};
    const auto widen = [&ends](std::size_t i, double value) {
        ends.at(i) = std::min(ends.at(i), value);
        ends.at(i + 1) = std::max(ends.at(i + 1), value);
    };
    for (const auto& [cellName, cell] : m_cells) {
        widen(0, cell.percentOne());
        widen(2, cell.percentTwo());
        widen(4, cell.predictedOverFound());
    }
    const auto text = [&ends](std::size_t i, int decimals) {
        return QByteArray::number(ends.at(i), 'f', decimals) + " to " +
               QByteArray::number(ends.at(i + 1), 'f', decimals);
    };
    return "| " + name + " | " + QByteArray::number(int(m_cells.size())) + " | " + text(0, 1) +
           " % | " + text(2, 1) + " % | " + text(4, 3) + " |";
}

void CoverageTable::print(const QByteArray& caption) const
{
    for (const auto& [name, cell] : m_cells)
        std::printf("%s\n", cell.text(name).constData());
    std::printf("%s\n\n", range(caption).constData());
}

int drawsOr(int few)
{
    const int wanted = qEnvironmentVariableIntValue("DROVIK_DRAWS");
    return wanted > 0 ? wanted : few;
}

bool isFull()
{
    return drawsOr(0) > 0;
}
