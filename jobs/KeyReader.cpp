#include "jobs/KeyReader.h"

#include "text/NearestName.h"
#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <QDir>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace
{

/// A key as it is shown, which may hold anything: in one line.
QString shown(std::string_view key)
{
    QString text = textFromUtf8(key);
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
            c.category() == QChar::Separator_Paragraph)
            c = QChar::ReplacementCharacter;
    return text;
}

QString joined(const QString& path, const QString& name)
{
    return path.isEmpty() ? name : path + QLatin1Char('.') + name;
}

} // namespace

KeyReader::KeyReader(const QByteArray& text, QString folder)
    : m_folder(std::move(folder)), m_lines(text.split('\n'))
{
}

JobPlace KeyReader::placeOf(const toml::source_region& source, const QString& key)
{
    return {static_cast<int>(source.begin.line), static_cast<int>(source.begin.column), key};
}

void KeyReader::fail(const JobPlace& place, const QString& reason)
{
    if (!error || isBefore(place, error->place))
        error = JobError{place, reason};
}

void KeyReader::fail(const toml::node& node, const QString& key, const QString& reason)
{
    fail(placeOf(node.source(), key), reason);
}

void KeyReader::failUnknown(const toml::key& key, const QString& path, const Keys& keys)
{
    const QString name = shown(key.str());
    QStringList names;
    for (const Key& known : keys)
        names += QLatin1String(known.name);
    const QString meant = nearestName(name, names);
    fail(placeOf(key.source(), joined(path, name)),
         QStringLiteral("unknown key%1; known are: %2")
             .arg(meant.isEmpty() ? QString() : QStringLiteral(", did you mean ") + meant,
                  names.join(QStringLiteral(", "))));
}

void KeyReader::readTable(const toml::table& table, const QString& path, const Keys& keys)
{
    for (const auto& [key, node] : table) {
        const auto known = std::find_if(keys.begin(), keys.end(),
                                        [&key = key](const Key& k) { return key.str() == k.name; });
        if (known == keys.end()) {
            failUnknown(key, path, keys);
            continue;
        }
        const QString whole = joined(path, QLatin1String(known->name));
        if (known->handler)
            known->handler(node, whole);
        else if (const toml::table* inside = node.as_table())
            readTable(*inside, whole, known->inside);
        else
            fail(node, whole, QStringLiteral("must be a table: [%1]").arg(whole));
    }
}

void KeyReader::readTables(const toml::node& node, const QString& path,
                           const std::function<void(const toml::table&)>& read)
{
    const toml::array* array = node.as_array();
    if (array == nullptr || !array->is_array_of_tables())
        return fail(node, path, QStringLiteral("must be tables: [[%1]]").arg(path));
    for (const toml::node& table : *array)
        read(*table.as_table());
}

void KeyReader::takeNumber(const toml::node& node, const QString& key, QString& text)
{
    if (const auto whole = node.value_exact<int64_t>())
        text = QString::number(static_cast<qlonglong>(*whole));
    else if (const auto real = node.value_exact<double>(); real && std::isfinite(*real))
        text = QString::number(*real, 'g', QLocale::FloatingPointShortest);
    else
        fail(node, key, QStringLiteral("must be a finite number"));
}

// Another base, or marks between the digits, are no text that a line edit or a file's name has.
QString KeyReader::asTyped(const toml::node& node, const QString& text) const
{
    const QString stands = textAt(node.source());
    bool isNumber = false;
    const bool same = stands.toDouble(&isNumber) == numberFromText(text);
    return isNumber && same ? stands : text;
}

KeyReader::Handler KeyReader::number(QString& text)
{
    return [this, &text](const toml::node& node, const QString& key) {
        takeNumber(node, key, text);
        if (const QString stands = asTyped(node, text); stands != text)
            typed[key] = stands;
    };
}

KeyReader::Handler KeyReader::number(QString& text, JobPlace& place)
{
    return [this, &text, &place](const toml::node& node, const QString& key) {
        place = placeOf(node.source(), key);
        number(text)(node, key);
    };
}

KeyReader::Handler KeyReader::wholeNumber(QString& text)
{
    return [this, &text](const toml::node& node, const QString& key) {
        if (const auto whole = node.value_exact<int64_t>())
            text = QString::number(static_cast<qlonglong>(*whole));
        else
            fail(node, key, QStringLiteral("must be a whole number"));
    };
}

KeyReader::Handler KeyReader::flag(std::optional<bool>& value)
{
    return [this, &value](const toml::node& node, const QString& key) {
        value = node.value_exact<bool>();
        if (!value)
            fail(node, key, QStringLiteral("must be true or false"));
    };
}

KeyReader::Handler KeyReader::flag(bool& value)
{
    return [this, &value](const toml::node& node, const QString& key) {
        std::optional<bool> given;
        flag(given)(node, key);
        value = given.value_or(value);
    };
}

KeyReader::Handler KeyReader::text(QString& value, JobPlace& place, const char* what)
{
    return [this, &value, &place, what](const toml::node& node, const QString& key) {
        place = placeOf(node.source(), key);
        const auto text = node.value_exact<std::string_view>();
        if (text && !text->empty())
            value = textFromUtf8(*text);
        else
            fail(node, key,
                 QStringLiteral("must be %1, in quotation marks").arg(QLatin1String(what)));
    };
}

KeyReader::Handler KeyReader::filePath(JobFilePath& file)
{
    return [this, &file](const toml::node& node, const QString& key) {
        text(file.path, file.place, "the path of a file")(node, key);
        if (!file.path.isEmpty())
            file.path = inFolder(file.path);
    };
}

KeyReader::Handler KeyReader::texts(std::vector<JobFilePath>& files, const char* what,
                                    bool emptyToo)
{
    return [this, &files, what, emptyToo](const toml::node& node, const QString& key) {
        const toml::array* array = node.as_array();
        const QString wanted =
            QStringLiteral("must be %1, each in quotation marks").arg(QLatin1String(what));
        if (array == nullptr || array->empty())
            return fail(node, key, wanted);
        for (const toml::node& item : *array) {
            const auto text = item.value_exact<std::string_view>();
            if (text && (emptyToo || !text->empty()))
                files.push_back({textFromUtf8(*text), placeOf(item.source(), key)});
            else
                fail(item, key, wanted);
        }
    };
}

QString KeyReader::textAt(const toml::source_region& source) const
{
    const int line = static_cast<int>(source.begin.line) - 1;
    if (line < 0 || line >= m_lines.size() || source.end.line != source.begin.line)
        return {};
    // The columns are those of characters, of which a QString may hold one as two.
    const QVector<uint> characters = QString::fromUtf8(m_lines[line]).toUcs4();
    const int first = static_cast<int>(source.begin.column) - 1;
    const int count = static_cast<int>(source.end.column) - 1 - first;
    const QVector<uint> found = characters.mid(first, count);
    return QString::fromUcs4(found.constData(), found.size()).trimmed();
}

QString KeyReader::inFolder(const QString& path) const
{
    return QDir(m_folder).filePath(path);
}
