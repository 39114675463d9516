#pragma once

#include <QString>
#include <QtTest>

#include <cmath>

/// Equal to the last bit; any not-a-number equals any other.
inline bool same(double a, double b)
{
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

/// Equal but for a difference of at most this size.
inline bool within(double difference, double found, double expected)
{
    return std::abs(found - expected) <= difference;
}

/// QCOMPARE takes doubles that differ by 1e-12 of their size for equal; this one does not.
#define COMPARE_EXACT(found, expected)                                                             \
    QVERIFY2(same(found, expected),                                                                \
             qPrintable(                                                                           \
                 QStringLiteral("%1 is not %2").arg(found, 0, 'g', 17).arg(expected, 0, 'g', 17)))
