#include "tests/model/LiteralImage.h"

#include "tests/model/LiteralFormulas.h"
#include "tests/support/PlainText.h"

#include <QFile>

namespace literal
{

void Image::load(const QString& path)
{
    valid = false;
    energies.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    loadBytes(file.readAll());
}

void Image::loadBytes(const QByteArray& bytes)
{
    valid = false;
    energies.clear();
    header.clear();
    records.clear();
    columns = 0;
    rows = 0;
    for (const QString& line : plain::text(bytes).split(QLatin1Char('\n'))) {
        const QStringList tokens = line.simplified().split(QLatin1Char(' '));
        if (tokens[0].startsWith(QLatin1Char('#')))
            takeHeader(line, tokens);
        else if (tokens.size() == 3)
            records.append({tokens[0].toDouble(), tokens[1].toDouble(), tokens[2].toDouble(), 1.0});
        else if (tokens.size() >= 4)
            records.append({tokens[0].toDouble(), tokens[1].toDouble(), tokens[2].toDouble(),
                            tokens[3].toDouble()});
    }
    valid = columns > 0 && rows > 0 && !records.isEmpty();
}

double Image::mutAt(qint64 i) const
{
    if (i < 0 || i >= records.size())
        return -1.0;
    const ImageRecord& pixel = records[static_cast<int>(i)];
    return formulas::pixelMuT(pixel.transmitted, pixel.incident);
}

} // namespace literal
