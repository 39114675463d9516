#include "batch/ShiftTable.h"

#include "jobs/JobFile.h"
#include "text/Csv.h"
#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <QDir>

#include <cmath>

namespace
{

std::optional<double> shiftOf(const QByteArray& field)
{
    const QByteArray text = field.trimmed();
    const auto shift = decimalFromToken(text.constData(), text.constData() + text.size());
    return shift && std::abs(*shift) <= largestGivenShift ? shift : std::nullopt;
}

QString shown(const QByteArray& field)
{
    constexpr int most = 100;
    return textFromUtf8({field.constData(), static_cast<std::size_t>(field.size())})
        .left(most)
        .simplified();
}

} // namespace

QString shiftTableName(const QString& folder, const QString& path)
{
    return QDir::cleanPath(QDir(folder).filePath(path));
}

std::optional<ShiftTable> readShiftTable(const QByteArray& text, const QString& folder,
                                         FileFault& fault)
{
    const auto refuse = [&fault](int line, const QString& reason) -> std::optional<ShiftTable> {
        fault.line = line;
        fault.reason = reason;
        return std::nullopt;
    };
    const std::vector<csv::Record> records = csv::records(text);
    QByteArrayList names = records.empty() ? QByteArrayList() : records.front().fields;
    for (QByteArray& name : names)
        name = name.trimmed();
    const int file = names.indexOf("file");
    const int shift = names.indexOf("shift");
    if (file < 0 || shift < 0)
        return refuse(1, QStringLiteral("needs the columns file and shift"));
    ShiftTable table;
    QHash<QString, int> lines;
    for (std::size_t i = 1; i < records.size(); ++i) {
        const auto& [line, fields] = records[i];
        const auto found = shiftOf(fields.value(shift));
        const QString name = shown(fields.value(file));
        if (name.isEmpty())
            return refuse(line, QStringLiteral("names no file"));
        if (!found)
            return refuse(line, QStringLiteral("\"%1\" is no shift between -100 and 100 eV")
                                    .arg(shown(fields.value(shift))));
        const QByteArray& bytes = fields[file];
        const QString path =
            textFromUtf8({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        const QString key = shiftTableName(folder, path);
        if (table.contains(key))
            return refuse(
                line,
                QStringLiteral("names %1 again, as line %2 does").arg(name).arg(lines.value(key)));
        table.insert(key, *found);
        lines.insert(key, line);
    }
    return table;
}
