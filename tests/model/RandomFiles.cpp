#include "tests/model/RandomFiles.h"

#include <QDir>
#include <QFile>
#include <QVector>

#include <cmath>

namespace
{

constexpr double hc = 12.398424360387684; // keV angstrom
constexpr double edgeEnergy = 8345.0;     // eV

} // namespace

RandomFiles::RandomFiles(quint32 seed, const QString& folder, bool broken)
    : m_random(seed), m_folder(folder), m_broken(broken)
{
    makeSpectra();
    makeImages();
    makeTargets();
}

void RandomFiles::makeSpectra()
{
    const char* const names[] = {"ref1",
                                 "ref2",
                                 "target",
                                 "blank",
                                 "a name with blanks",
                                 "50%1",
                                 "\xe3\x82\xb9\xe3\x83\x9a\xe3\x82\xaf\xe3\x83\x88",
                                 "it's \"quoted\"",
                                 "odd"};
    for (const char* name : names) {
        m_thickness = between(0.3, 3.0);
        m_oddRows = oddRows();
        QByteArray content = spectrum(chance(10) ? between(-1.0, 2.0) : between(0.0, 1.0));
        store(QString::fromUtf8(name) + QStringLiteral(".dat"),
              m_broken && chance(15) ? brokenCopy(content) : content, spectra);
    }
    spectra.append(m_folder + QStringLiteral("/missing.dat"));
    spectra.append(m_folder);
}

void RandomFiles::makeImages()
{
    const int columns = 1 + below(7);
    const int rows = 1 + below(6);
    for (int i = 1; i <= 8; ++i) {
        m_oddRows = oddRows();
        const bool same = !m_broken || chance(85);
        QByteArray content = same ? image(columns, rows) : image(1 + below(9), 1 + below(9));
        store(QStringLiteral("map %1.dat").arg(i),
              m_broken && chance(10) ? brokenCopy(content) : content, images);
    }
    images.append(m_folder + QStringLiteral("/missing map.dat"));
}

void RandomFiles::makeTargets()
{
    QDir(m_folder).mkpath(QStringLiteral("out/deep"));
    for (const char* name : {"out/result.dat", "out/deep/50%1.txt", "out/plain", "out/a.b.dat",
                             "out/deep", "out/nowhere/result.dat", ""})
        targets.append(*name ? m_folder + QLatin1Char('/') + QLatin1String(name) : QString());
}

void RandomFiles::store(const QString& name, const QByteArray& content, QStringList& list)
{
    const QString path = m_folder + QLatin1Char('/') + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
    list.append(path);
}

QByteArray RandomFiles::number(double value)
{
    const char formats[] = {'g', 'f', 'e'};
    return QByteArray::number(value, formats[below(3)], 4 + below(9));
}

QByteArray RandomFiles::blank()
{
    const char* const blanks[] = {" ", " ", " ", "   ", "\t", " \t "};
    return blanks[below(6)];
}

QByteArray RandomFiles::oddToken()
{
    const char* const tokens[] = {"nan", "inf",   "-inf",         "0", "-0",    "x",
                                  "1,5", "1e400", "1e-9",         "#", "-1234", "0x1F",
                                  "+5",  "1e+3",  "\xe3\x82\xb9", ".5"};
    return tokens[below(16)];
}

QByteArray RandomFiles::comment()
{
    const char* const comments[] = {"",
                                    "  9809     KEK-PF   BL12C",
                                    "Ni foil  05.10.02 13:04",
                                    "\xe8\xa9\xa6\xe6\x96\x99 No. 7",
                                    "d\xe9"
                                    "chantillon \xff\xfe",
                                    "offset 0 0 0 1 2 3",
                                    "1 2 3 4 5 6",
                                    "D= "};
    return comments[below(8)];
}

double RandomFiles::mut(double energy, double share) const
{
    const double l = hc * 1000 / energy;
    const double l3 = l * l * l;
    const double pre = 0.05 + 0.12 * l3 - 0.02 * l3 * l;
    const double x = (energy - edgeEnergy - 3 * share) / 4;
    const double step = 0.5 + std::atan(x) / 3.141592653589793;
    const double line = (0.3 + 0.8 * (1 - share)) * std::exp(-(x - 1.5) * (x - 1.5) / 4);
    return m_thickness * (pre + step * (0.9 * l3 / 3.3) + line);
}

QVector<double> RandomFiles::energies()
{
    double first = 8150 + below(100);
    double last = 8500 + below(500);
    if (m_broken && chance(8))
        first = 8320 + below(60); // nothing or little below the edge
    if (m_broken && chance(8))
        last = first + below(200);
    const double step = between(2.0, 15.0);
    QVector<double> energies;
    for (double e = first; e <= last; e += m_broken && chance(3) ? 0.0 : step)
        energies.append(e);
    if (m_broken && chance(4))
        energies.resize(below(5));
    return energies;
}

QByteArray RandomFiles::spectrumHeader(double spacing)
{
    QByteArray text;
    for (int i = below(4); i > 0; --i)
        text += comment() + '\n';
    if (spacing != 3.1355316)
        text += "Mono :   SI(111)       D= " + QByteArray::number(spacing, 'f', 7) +
                " A    Initial angle=  13.2800 deg\n";
    text += comment() + '\n';
    text += chance(50) ? "  Angle(c) Angle(o)  time/s  1  2\n" : "";
    return text + "      Offset         0         0 \n";
}

QByteArray RandomFiles::spectrumRow(double angle, double share, double energy)
{
    const double i0 = between(1e5, 2e5);
    const double noise = chance(50) ? 0.0 : between(-1e-3, 1e-3);
    QVector<QByteArray> tokens{
        number(angle), QByteArray::number(angle, 'g', 7 + below(6)), "1.00",
        QByteArray::number(i0, 'f', 1),
        QByteArray::number(i0 * std::exp(-mut(energy, share) + noise), 'g', 9)};
    if (chance(m_oddRows))
        tokens[below(tokens.size())] = oddToken();
    if (chance(m_oddRows))
        tokens.resize(below(6));
    if (chance(m_oddRows))
        tokens.append(oddToken());
    QByteArray row;
    for (const QByteArray& token : tokens)
        row += blank() + token;
    return row;
}

QByteArray RandomFiles::spectrum(double share)
{
    double spacing = 3.1355316;
    if (chance(60))
        spacing = chance(50) ? 3.1355 : 1.92013;
    const QByteArray end = chance(20) ? "\r\n" : "\n";
    QByteArray text = spectrumHeader(spacing);
    for (const double energy : energies()) {
        const double sine = hc / (2 * spacing * energy) * 1000;
        const double angle = std::asin(sine) * 180 / 3.1415926535;
        text += spectrumRow(angle, share, energy) + end;
        if (chance(m_oddRows / 4))
            text += comment() + end;
    }
    return text;
}

QByteArray RandomFiles::imageHeader(int columns, int rows)
{
    QByteArray text = chance(50) ? "# made   by hand " : "#";
    text += '\n';
    if (chance(20))
        text += "# " + comment() + '\n';
    const QByteArray axis = chance(70) ? "AXIS" : "Axis";
    text += "# " + axis + " 0 x mm 0 " + number(0.5) + ' ' + QByteArray::number(columns) + '\n';
    text += "#  " + axis + "  1 y mm 0 1   " + QByteArray::number(rows) + " more\n";
    if (chance(60))
        text += "# Energy = " + QByteArray::number(8300 + below(200)) + " eV\n";
    return text;
}

QByteArray RandomFiles::image(int columns, int rows)
{
    m_thickness = between(0.5, 2.0);
    const bool fourTokens = chance(50);
    const double energy = 8300 + below(200);
    QByteArray text = imageHeader(columns, rows);
    const int records = columns * rows - (m_broken && chance(10) ? below(columns * rows) : 0);
    for (int i = 0; i < records; ++i) {
        const double value = mut(energy, between(0.0, 1.0));
        text += number(i % columns) + blank() + number(0.5 * (i / columns)) + blank();
        if (chance(m_oddRows))
            text += oddToken();
        else if (fourTokens)
            text += number(1e5 * std::exp(-value)) + blank() + number(chance(3) ? 0.0 : 1e5);
        else
            text += number(chance(3) ? 0.0 : std::exp(-value));
        text += (i + 1) % columns == 0 && chance(50) ? "\n\n" : "\n";
    }
    return text;
}

QByteArray RandomFiles::brokenCopy(QByteArray content)
{
    switch (below(7)) {
    case 0:
        return {};
    case 1:
        return content.replace("Offset", "OFFSET").replace("AXIS", "AXES");
    case 2:
        return content.left(below(content.size() + 1));
    case 3:
        return content.insert(below(content.size() + 1), '\0');
    case 4:
        return "\xef\xbb\xbf" + content;
    case 5:
        return content.replace("\n", "\r");
    default:
        for (int i = 0; i < 10 && !content.isEmpty(); ++i)
            content[below(content.size())] = static_cast<char>(below(256));
        return content;
    }
}
