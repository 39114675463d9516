#include "text/Csv.h"

#include <array>
#include <charconv>
#include <cmath>

namespace
{

QByteArray quoted(QByteArray field)
{
    const bool plain = field.indexOf(',') < 0 && field.indexOf('"') < 0 &&
                       field.indexOf('\n') < 0 && field.indexOf('\r') < 0;
    return plain ? field : '"' + field.replace("\"", "\"\"") + '"';
}

/// Takes a text apart, field by field.
class Fields
{
public:
    explicit Fields(const QByteArray& text)
        : m_text(text), m_at(text.startsWith("\xEF\xBB\xBF") ? 3 : 0)
    {
    }

    bool atEnd() const { return m_at >= m_text.size(); }
    int line() const { return m_line; }

    /// @param more  whether another field of the same record follows
    QByteArray next(bool& more)
    {
        QByteArray field;
        if (!atEnd() && m_text[m_at] == '"')
            field = inQuotes();
        const int from = m_at;
        while (!atEnd() && m_text[m_at] != ',' && m_text[m_at] != '\n')
            ++m_at;
        field += m_text.mid(from, m_at - from);
        more = !atEnd() && m_text[m_at] == ',';
        if (!more) {
            if (field.endsWith('\r'))
                field.chop(1);
            ++m_line;
        }
        ++m_at;
        return field;
    }

private:
    QByteArray inQuotes()
    {
        QByteArray field;
        for (++m_at; !atEnd(); ++m_at) {
            if (m_text[m_at] == '"' && (++m_at >= m_text.size() || m_text[m_at] != '"'))
                return field;
            m_line += m_text[m_at] == '\n' ? 1 : 0;
            field += m_text[m_at];
        }
        return field;
    }

    const QByteArray& m_text;
    int m_at;
    int m_line = 1;
};

} // namespace

QByteArray csv::line(const QByteArrayList& fields)
{
    QByteArray text;
    for (int i = 0; i < fields.size(); ++i)
        text += (i > 0 ? "," : "") + quoted(fields[i]);
    return text + "\r\n";
}

QByteArray csv::number(double value)
{
    if (std::isnan(value))
        return "nan";                   // whatever its sign
    constexpr std::size_t longest = 32; // "-2.2250738585072014e-308" has 24
    std::array<char, longest> text{};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), static_cast<int>(end.ptr - text.data())};
}

QByteArray csv::number(const std::optional<double>& value)
{
    return value ? number(*value) : QByteArray();
}

std::vector<csv::Record> csv::records(const QByteArray& text)
{
    std::vector<Record> records;
    Fields fields(text);
    while (!fields.atEnd()) {
        Record record{fields.line(), {}};
        bool more = true;
        while (more)
            record.fields += fields.next(more);
        if (record.fields != QByteArrayList{QByteArray()})
            records.push_back(record);
    }
    return records;
}
