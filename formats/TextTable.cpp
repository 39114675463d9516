#include "formats/TextTable.h"

#include "analysis/Constants.h"
#include "system/ByteSource.h"
#include "text/LineTokens.h"
#include "text/NumberText.h"
#include "text/TextBytes.h"

#include <QTextCodec>

#include <algorithm>
#include <cstring>

namespace
{

/// So many comments are kept; a header has some dozen.
constexpr std::size_t mostComments = 1000;

constexpr std::string_view commentSigns = "#%;!*";

bool isWord(std::string_view token, std::string_view word)
{
    return token.size() == word.size() &&
           std::equal(token.begin(), token.end(), word.begin(),
                      [](char a, char b) { return (a | 0x20) == b; });
}

/// A number, or the words for what is none.
std::optional<double> numberOf(std::string_view token)
{
    if (const auto value = decimalFromToken(token.data(), token.data() + token.size()))
        return value;
    if (!token.empty() && (token.front() == '-' || token.front() == '+'))
        token.remove_prefix(1);
    for (const std::string_view word : {"nan", "inf", "infinity"})
        if (isWord(token, word))
            return notANumber;
    return std::nullopt;
}

QString quoted(std::string_view token)
{
    constexpr std::size_t longestShown = 40;
    return QLatin1Char('"') + textFromUtf8(token.substr(0, longestShown)) + QLatin1Char('"');
}

std::optional<QString> appendNumber(std::string_view token, std::vector<double>& numbers)
{
    const auto value = numberOf(token);
    if (!value)
        return quoted(token) + QStringLiteral(" is no number");
    numbers.push_back(*value);
    return std::nullopt;
}

std::optional<QString> blankSeparated(std::string_view line, std::vector<double>& numbers)
{
    const char* p = line.data();
    const char* const end = p + line.size();
    for (;;) {
        while (p != end && isBlank(*p))
            ++p;
        if (p == end)
            return std::nullopt;
        const char* const first = p;
        while (p != end && !isBlank(*p))
            ++p;
        const auto size = static_cast<std::size_t>(p - first);
        if (auto wrong = appendNumber({first, size}, numbers))
            return wrong;
    }
}

/// Fields apart by a sign; one behind the last sign may be missing.
std::optional<QString> signSeparated(std::string_view line, char sign, std::vector<double>& numbers)
{
    while (!line.empty()) {
        const std::size_t at = std::min(line.find(sign), line.size());
        const std::string_view field = trimmed(line.substr(0, at));
        line.remove_prefix(std::min(at + 1, line.size()));
        const bool parted =
            std::any_of(field.begin(), field.end(), isBlank) || field.find(',') != field.npos;
        if (parted)
            return QStringLiteral("a comma stands within a number; decimal points are needed");
        if (field.empty() && trimmed(line).empty())
            break;
        if (auto wrong = appendNumber(field, numbers))
            return wrong;
    }
    return std::nullopt;
}

/// Whether a line has letters beyond those of numbers, as a heading has.
bool hasWords(std::string_view line)
{
    return std::any_of(line.begin(), line.end(), [](char c) {
        const auto letter = static_cast<char>(c | 0x20);
        return letter >= 'a' && letter <= 'z' && letter != 'e';
    });
}

/// Goes through the lines of a text.
class TableReader
{
public:
    explicit TableReader(TextTable& table) : m_table(table) {}

    std::optional<TableFault> read(std::string_view text);

private:
    std::optional<TableFault> readLine(std::string_view line);
    void readComment(std::string_view line);

    TextTable& m_table;
    int m_line = 0;
};

std::optional<TableFault> TableReader::read(std::string_view text)
{
    while (!text.empty()) {
        const void* const feed = std::memchr(text.data(), '\n', text.size());
        const auto toFeed =
            feed == nullptr
                ? text.size()
                : static_cast<std::size_t>(static_cast<const char*>(feed) - text.data());
        const void* const back = std::memchr(text.data(), '\r', toFeed);
        const auto size =
            back == nullptr
                ? toFeed
                : static_cast<std::size_t>(static_cast<const char*>(back) - text.data());
        ++m_line;
        if (auto fault = readLine(text.substr(0, size)))
            return fault;
        text.remove_prefix(
            std::min(size + (back != nullptr && size + 1 == toFeed ? 2 : 1), text.size()));
    }
    if (m_table.lines.empty())
        return TableFault{0, QStringLiteral("has no rows of numbers")};
    return std::nullopt;
}

void TableReader::readComment(std::string_view line)
{
    if (!m_table.lines.empty() || m_table.comments.size() >= mostComments)
        return;
    line = trimmed(line);
    if (line.empty())
        return;
    if (commentSigns.find(line.front()) != std::string_view::npos)
        line.remove_prefix(1);
    m_table.comments.emplace_back(trimmed(line));
}

std::optional<TableFault> TableReader::readLine(std::string_view line)
{
    if (isComment(line)) {
        readComment(line);
        return std::nullopt;
    }
    const std::size_t before = m_table.values.size();
    if (const auto wrong = numbersOf(line, m_table.values)) {
        if (!m_table.lines.empty() || !hasWords(line))
            return TableFault{m_line, *wrong};
        m_table.values.clear();
        readComment(line);
        return std::nullopt;
    }
    const std::size_t count = m_table.values.size() - before;
    if (count == 0)
        return TableFault{m_line, QStringLiteral("has no numbers between its signs")};
    if (m_table.lines.empty())
        m_table.columns = count;
    if (count != m_table.columns)
        return TableFault{m_line, QStringLiteral("has %1 numbers where line %2 has %3")
                                      .arg(count)
                                      .arg(m_table.lines.front())
                                      .arg(m_table.columns)};
    m_table.lines.push_back(m_line);
    return std::nullopt;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isComment(std::string_view line)
{
    for (const char c : line)
        if (!isBlank(c))
            return commentSigns.find(c) != std::string_view::npos;
    return true;
}

bool isRowLike(std::string_view line)
{
    line = trimmed(line);
    return !isComment(line) && !hasWords(line) &&
           line.find_first_of("0123456789") != std::string_view::npos &&
           line.find_first_of(" \t,;") != std::string_view::npos;
}

std::optional<QString> numbersOf(std::string_view line, std::vector<double>& numbers)
{
    const std::size_t sign = line.find_first_of(",;");
    if (sign == std::string_view::npos)
        return blankSeparated(line, numbers);
    const bool semicolons = line.find(';') != std::string_view::npos;
    return signSeparated(line, semicolons ? ';' : ',', numbers);
}

std::string plainText(std::string bytes)
{
    constexpr int utf8 = 106; // its number in the registry of character sets
    const QByteArray all = QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
    QTextCodec* const marked = QTextCodec::codecForUtfText(all.left(4), nullptr);
    if (marked == nullptr)
        return bytes;
    if (marked->mibEnum() == utf8)
        return bytes.substr(3);
    return marked->toUnicode(all).toStdString();
}

std::optional<TableFault> readTable(const ByteSource& file, TextTable& table)
{
    const auto size = static_cast<std::size_t>(file.size());
    if (size > largestTable)
        return TableFault{0, QStringLiteral("is larger than 64 MiB and no spectrum")};
    std::string bytes(size, '\0');
    if (!file.read(bytes.data(), size, 0))
        return TableFault{0, QStringLiteral("cannot be read")};
    const std::string text = plainText(std::move(bytes));
    return TableReader(table).read(text);
}
