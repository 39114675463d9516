#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class ByteSource;

/// Why a text is no table.
struct TableFault {
    int line = 0; ///< 0 where it has none
    QString reason;
};

/// A text of numbers in columns, apart by blanks, tabs, commas or semicolons, with comment lines
/// before and between them.
struct TextTable {
    std::vector<std::string> comments; ///< before the first row, without their signs and outer
                                       ///< blanks; lines that begin with no number count as such
    std::size_t columns = 0;
    std::vector<double> values; ///< row after row; not-a-number where the text says nan or inf
    std::vector<int> lines;     ///< of each row, 1 for the text's first line

    std::size_t rows() const { return lines.size(); }
    double at(std::size_t row, std::size_t column) const { return values[row * columns + column]; }
};

/// A text larger than this, 64 MiB, is no table.
constexpr std::size_t largestTable = std::size_t{1} << 26;

/// Reads a table. Lines end with a line feed, a carriage return or both.
/// @return what is wrong: a file that cannot be read or is too large, a row that is not all numbers
///         or of another length than the first one, no row at all; nothing where all is read
std::optional<TableFault> readTable(const ByteSource& file, TextTable& table);

/// The numbers of a line, appended.
/// @return why it has none, or is more than numbers
std::optional<QString> numbersOf(std::string_view line, std::vector<double>& numbers);

/// Whether a line is a comment (`#`, `%`, `;`, `!`, `*`), or blank.
bool isComment(std::string_view line);

/// Whether a line may be a row of several numbers: no letters beyond those of numbers, and a sign
/// that parts two of them.
bool isRowLike(std::string_view line);

/// The text of bytes in UTF-8 without a byte order mark; converted where a mark shows another
/// encoding.
std::string plainText(std::string bytes);

/// A text without its outer blanks.
std::string_view trimmed(std::string_view text);
