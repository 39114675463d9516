#pragma once

#include "tests/model/LiteralFormulas.h"

#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTextStream>
#include <QVector>

namespace plain
{

/// The straightforward reader of 2D data, the rules written down one after the other with the
/// toolkit's own text stream, splitting and conversions.
struct MapFile {
    struct Record {
        double first;
        double second;
        double transmitted;
        double incident;

        double mut() const { return formulas::pixelMuT(transmitted, incident); }
    };

    bool valid = false;
    QStringList header;
    QStringList energies;
    int columns = 0;
    int rows = 0;
    QVector<Record> records;

    bool read(const QString& path)
    {
        valid = false;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return false;
        QTextStream in(&file);
        readFrom(in);
        return true;
    }

    void readFrom(QTextStream& in)
    {
        *this = MapFile();
        const QRegularExpression blanks(QStringLiteral("\\s+"));
        while (!in.atEnd()) {
            const QString line = in.readLine();
            const QStringList tokens = line.simplified().split(blanks);
            if (tokens[0].startsWith(QLatin1Char('#')))
                readHeader(line, tokens);
            else if (tokens.size() == 3)
                records.append(
                    {tokens[0].toDouble(), tokens[1].toDouble(), tokens[2].toDouble(), 1.0});
            else if (tokens.size() >= 4)
                records.append({tokens[0].toDouble(), tokens[1].toDouble(), tokens[2].toDouble(),
                                tokens[3].toDouble()});
        }
        valid = columns > 0 && rows > 0 && !records.isEmpty();
    }

private:
    void readHeader(const QString& line, const QStringList& tokens)
    {
        header.append(line);
        if (tokens.size() >= 8 && tokens[1].toUpper() == QLatin1String("AXIS")) {
            const int n = tokens[7].toInt();
            if (tokens[2].toInt() == 0)
                columns = n;
            if (tokens[2].toInt() == 1)
                rows = n;
        }
        if (tokens.size() >= 4 && tokens[1].toUpper() == QLatin1String("ENERGY"))
            energies.append(tokens[3]);
    }
};

} // namespace plain
