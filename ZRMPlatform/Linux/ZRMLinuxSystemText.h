// Texts that come from the system and promise nothing: not that they are UTF-8, nor how long they
// are.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Every maximal ill-formed sequence becomes one U+FFFD; well-formed UTF-8 comes back as it is.
[[nodiscard]] std::string zrm_wellFormedText(std::string_view bytes);

// Without spaces, line ends and NULs at both ends, and well-formed; absent when nothing is left, or
// more than 256 bytes, which no name of the system has.
[[nodiscard]] std::optional<std::string> zrm_systemName(std::string_view bytes);

// The first line of a small file, as zrm_systemName(); absent when there is no such file.
[[nodiscard]] std::optional<std::string> zrm_systemNameInFile(const std::string& path);

// The last value that a file of lines NAME=VALUE gives the name, as zrm_systemName(). A value may
// be quoted as for a shell; nothing in it is expanded.
[[nodiscard]] std::optional<std::string> zrm_assignedName(const std::string& path,
                                                          std::string_view name);
