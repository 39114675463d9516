#include "input/AXafsData.h"
#include "input/SpectrumReader.h"
#include "tests/fuzz/FuzzText.h"
#include "tests/model/LiteralSpectrum.h"

#include <QBuffer>

// Any bytes as a spectrum file: the program's reader and fits against the literal reading, to the
// last bit.

namespace
{

void comparePoints(const SpectrumPoints& points, const literal::Spectrum& expected)
{
    fuzz::require(static_cast<int>(points.size()) == expected.points.size(), "number of points");
    for (std::size_t i = 0; i < points.size(); ++i) {
        const literal::SpectrumPoint& point = expected.points[static_cast<int>(i)];
        fuzz::require(fuzz::same(points[i].angle, point.angle), "angle");
        fuzz::require(fuzz::same(points[i].energy, point.energy), "energy");
        fuzz::require(fuzz::same(points[i].mut, point.mut), "mu-t");
    }
}

void compareFits(const AXafsData& data, const literal::Spectrum& expected)
{
    fuzz::require(fuzz::same(data.preVic.c, expected.preVic.c), "pre-edge c");
    fuzz::require(fuzz::same(data.preVic.a, expected.preVic.a), "pre-edge a");
    fuzz::require(fuzz::same(data.preVic.b, expected.preVic.b), "pre-edge b");
    fuzz::require(fuzz::same(data.postVic.c, expected.postVic.c), "post-edge c");
    fuzz::require(fuzz::same(data.postVic.a, expected.postVic.a), "post-edge a");
    fuzz::require(fuzz::same(data.postVic.b, expected.postVic.b), "post-edge b");
    fuzz::require(fuzz::same(data.edgeJump(), expected.edgeJump()), "edge jump");
    fuzz::require(fuzz::same(data.edgeJumpNoC(), expected.edgeJumpNoC()), "two-term edge jump");
    for (const double energy : {0.0, 8300.0, 8400.0})
        fuzz::require(fuzz::same(data.normalizedAt(energy), expected.normalizedAt(energy)),
                      "normalized value");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    QByteArray text = fuzz::text(bytes, size);
    QBuffer file(&text);
    file.open(QIODevice::ReadOnly);
    AXafsData data;
    data.points = readSpectrum(file);

    QBuffer again(&text);
    again.open(QIODevice::ReadOnly | QIODevice::Text);
    literal::Spectrum expected;
    expected.edge = data.edge = 8350.0;
    expected.preEdgeEnd = data.preEdgeEnd = 8300.0;
    expected.postEdgeStart = data.postEdgeStart = 8400.0;
    expected.readOpened(QString(), again);

    comparePoints(data.points, expected);
    data.fitVictreens();
    compareFits(data, expected);
    return 0;
}
