#include "display/CColors.h"

#include "display/Pixel.h"

namespace
{

constexpr int repeats = 3;
constexpr int brightSum = 500; // above this a new colour is too pale for a white ground

QVector<QColor> basePalette()
{
    // The fourth and the thirteenth are the same on purpose.
    const QVector<QColor> once{QColor(0, 0, 0),       QColor(255, 0, 0),     QColor(0, 0, 255),
                               QColor(120, 220, 120), QColor(200, 200, 0),   QColor(240, 0, 240),
                               QColor(0, 240, 240),   QColor(160, 0, 0),     QColor(0, 160, 0),
                               QColor(0, 0, 160),     QColor(255, 160, 160), QColor(160, 160, 160),
                               QColor(120, 220, 120), QColor(160, 160, 255), QColor(240, 160, 0)};
    QVector<QColor> palette;
    palette.reserve(repeats * once.size());
    for (int i = 0; i < repeats; ++i)
        palette += once;
    return palette;
}

int blendedComponent(int next, int current)
{
    return next < current ? (next + 2 * current) / 3 : next;
}

QColor blend(const QColor& current, const QColor& next)
{
    const int red = blendedComponent(next.red(), current.red());
    const int green = blendedComponent(next.green(), current.green());
    const int blue = blendedComponent(next.blue(), current.blue());
    if (red + green + blue <= brightSum)
        return {red, green, blue};
    // Green looks brightest and is damped hardest.
    return {truncToInt(red * 0.8), truncToInt(green * 0.6), truncToInt(blue * 0.8)};
}

} // namespace

CColors::CColors() : CColors(40) {}

CColors::CColors(int n) : CColors(basePalette(), n) {}

CColors::CColors(const QVector<QColor>& base, int n) : colors(base)
{
    if (!colors.isEmpty())
        extendTo(n);
}

void CColors::extendTo(int n)
{
    while (colors.size() < n) {
        const int pass = colors.size();
        for (int i = 1; i <= pass && colors.size() < n; ++i)
            colors.append(blend(colors[i - 1], colors[i == pass ? 0 : i]));
    }
}
