#pragma once

#include "formats/TextTable.h"

#include <map>
#include <string>

/// A column as the comments of a text name it; both in small letters, empty where they do not.
struct ColumnName {
    std::string name;
    std::string unit;
};

/// What the comments before a table say.
struct TableHeader {
    std::vector<ColumnName> columns;           ///< [table.columns]
    std::map<std::string, std::string> fields; ///< "mono.d_spacing" in small letters, its value
};

/// Reads the comments of a table, XDI or not: `Family.key: value` until a line of slashes, of two
/// fields with one name the last; `Column.N: name unit`, what follows `||` left out; a last line of
/// as many words as there are columns names those that have no field. What is no field is passed
/// over.
TableHeader tableHeader(const TextTable& table);
