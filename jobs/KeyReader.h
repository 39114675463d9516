#pragma once

#include "jobs/JobFile.h"

#include <QHash>

#include <toml++/toml.h>

#include <functional>
#include <utility>
#include <vector>

/// Goes through parsed tables whose keys are known, and hands each value to what takes it. The
/// first error in the text is kept, in whatever order the keys are visited.
class KeyReader
{
public:
    /// Takes a value; the key is the whole one, "edge.energy".
    using Handler = std::function<void(const toml::node& node, const QString& key)>;
    struct Key {
        const char* name;
        Handler handler;              ///< none for a table whose keys are listed
        std::vector<Key> inside = {}; ///< keys of the table, or of each table of a list
    };
    using Keys = std::vector<Key>;

    /// @param text    that was parsed
    /// @param folder  what relative paths start from
    KeyReader(const QByteArray& text, QString folder);

    std::optional<JobError> error;
    QHash<QString, QString> typed; ///< numbers that stand otherwise than in their fields, by key

    static JobPlace placeOf(const toml::source_region& source, const QString& key);
    void fail(const JobPlace& place, const QString& reason);
    void fail(const toml::node& node, const QString& key, const QString& reason);

    /// @param path  of the table, "edge"; empty for the root
    void readTable(const toml::table& table, const QString& path, const Keys& keys);
    /// Calls `read` for each table of a list: [[point]].
    void readTables(const toml::node& node, const QString& path,
                    const std::function<void(const toml::table&)>& read);

    Handler number(QString& text);
    Handler number(QString& text, JobPlace& place);
    /// Sets the text that types the number into a line edit, with all its digits.
    void takeNumber(const toml::node& node, const QString& key, QString& text);
    /// The number as it stands in the text where that can be typed, or its text.
    QString asTyped(const toml::node& node, const QString& text) const;
    Handler wholeNumber(QString& text);
    Handler flag(std::optional<bool>& value);
    Handler flag(bool& value);
    Handler text(QString& value, JobPlace& place, const char* what);
    Handler filePath(JobFilePath& file);
    /// A list of texts, kept as they are.
    /// @param what  they are, "a list of names"
    /// @param emptyToo  a text may be empty
    Handler texts(std::vector<JobFilePath>& files, const char* what, bool emptyToo);
    template <typename Value>
    Handler choice(std::function<void(Value)> take,
                   std::vector<std::pair<const char*, Value>> choices);

    /// What stands in the text; for a value in one line.
    QString textAt(const toml::source_region& source) const;
    QString inFolder(const QString& path) const;

private:
    void failUnknown(const toml::key& key, const QString& path, const Keys& keys);

    QString m_folder;
    QByteArrayList m_lines;
};

template <typename Value>
KeyReader::Handler KeyReader::choice(std::function<void(Value)> take,
                                     std::vector<std::pair<const char*, Value>> choices)
{
    return [this, take = std::move(take), choices](const toml::node& node, const QString& key) {
        const auto text = node.value_exact<std::string_view>();
        QStringList names;
        for (const auto& [name, value] : choices) {
            if (text && *text == name)
                return take(value);
            names += QStringLiteral("\"%1\"").arg(QLatin1String(name));
        }
        fail(node, key, QStringLiteral("must be one of ") + names.join(QStringLiteral(", ")));
    };
}
