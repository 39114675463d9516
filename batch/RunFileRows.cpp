#include "batch/RunFileRows.h"

#include <QDir>
#include <QFile>

#include <limits>

namespace
{

bool hasNumbers(const QByteArray& column)
{
    return column != "target" && column != "method" && column != "refusal" && column != "warnings";
}

/// As the common tools write and check them.
void addLines(const std::vector<RecordedFile>& files, QByteArray& text)
{
    for (const RecordedFile& file : files)
        text += toBytes(file.digest).toHex() + "  " + file.path + '\n';
}

} // namespace

void RunFileRows::setTargetColumns(const QByteArrayList& columns)
{
    for (const QByteArray& name : columns)
        m_contents.targets.columns.push_back({name, hasNumbers(name)});
}

void RunFileRows::addTarget(const RecordedRow& row)
{
    auto field = row.fields.begin();
    for (ResultTable::Column& column : m_contents.targets.columns) {
        if (column.isNumber)
            column.numbers.push_back(field->isEmpty() ? std::numeric_limits<double>::quiet_NaN()
                                                      : field->toDouble());
        else
            column.texts += *field;
        ++field;
    }
}

void RunFileRows::addMap(const RecordedRow& row, const QString& folder,
                         const std::vector<RecordedFile>& common)
{
    for (const RecordedFile& file : row.outputs)
        if (file.path.endsWith(".h5")) {
            RunContents::Map map{
                row.name(), QDir(folder).filePath(QFile::decodeName(file.path)), {}};
            addLines(common, map.inputs);
            addLines(row.inputs, map.inputs);
            m_contents.maps.push_back(map);
        }
}
