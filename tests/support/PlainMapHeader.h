#pragma once

#include <QString>
#include <QStringList>

namespace plain
{

/// What the lines of 2D data that begin with "#" say.
struct MapHeader {
    QStringList header;   ///< the lines as they are
    QStringList energies; ///< of the energy lines, in the order of the file
    int columns = 0;      ///< first axis
    int rows = 0;         ///< second axis

    /// @param tokens  of the line, split at blanks
    void takeHeader(const QString& line, const QStringList& tokens)
    {
        header.append(line);
        if (tokens.size() >= 8 && tokens[1].toUpper() == QLatin1String("AXIS")) {
            if (tokens[2].toInt() == 0)
                columns = tokens[7].toInt();
            else if (tokens[2].toInt() == 1)
                rows = tokens[7].toInt();
        }
        if (tokens.size() >= 4 && tokens[1].toUpper() == QLatin1String("ENERGY"))
            energies.append(tokens[3]);
    }
};

} // namespace plain
