// Words of a command line, quoted as a shell would.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Words are parted by blanks and tabs. Within '…' every character stands for itself. Within "…" a
// backslash takes the meaning from a following ", \, $ or `, and stands for itself before anything
// else. Outside quotes a backslash takes the meaning from any character. Quoted and unquoted parts
// that touch are one word; '' is an empty word. Absent where a quote is not closed or a backslash
// ends the line. Nothing is expanded.
std::optional<std::vector<std::string>> zrm_splitWords(std::string_view line);
