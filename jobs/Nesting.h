#pragma once

#include <string_view>

/// Where the text of a job (TOML) nests deeper than any job does: more than 16 brackets within one
/// another, or a key of more than 16 parts. The library goes down and up such a text by recursion,
/// which a stack bounds; jobs need three levels. Strings and comments do not count, and nothing
/// does behind a string that never ends.
/// @return the line, 1 for the first; 0 where there is none
int lineOfDeepNesting(std::string_view text);
