#pragma once

#include "tests/support/PlainMapHeader.h"

#include <QIODevice>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace literal
{

struct ImageRecord {
    double position1 = 0.0;
    double position2 = 0.0;
    double transmitted = 0.0;
    double incident = 0.0;
};

/// The 2D data of one energy point, read line by line.
class Image : public plain::MapHeader
{
public:
    bool valid = false;
    QVector<ImageRecord> records;

    /// An unreadable file makes the image invalid and leaves all else.
    void load(const QString& path);
    /// What `load` does with the bytes of the file.
    void loadBytes(const QByteArray& bytes);
    /// The mu-t of pixel i: -1 outside the image.
    double mutAt(qint64 i) const;
};

} // namespace literal
