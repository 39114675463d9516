#pragma once

#include "tests/model/LiteralFormulas.h"
#include "tests/support/PlainMapHeader.h"

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
struct MapFile : MapHeader {
    struct Record {
        double first;
        double second;
        double transmitted;
        double incident;

        double mut() const { return formulas::pixelMuT(transmitted, incident); }
    };

    bool valid = false;
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
                takeHeader(line, tokens);
            else if (tokens.size() == 3)
                records.append(
                    {tokens[0].toDouble(), tokens[1].toDouble(), tokens[2].toDouble(), 1.0});
            else if (tokens.size() >= 4)
                records.append({tokens[0].toDouble(), tokens[1].toDouble(), tokens[2].toDouble(),
                                tokens[3].toDouble()});
        }
        valid = columns > 0 && rows > 0 && !records.isEmpty();
    }
};

} // namespace plain
