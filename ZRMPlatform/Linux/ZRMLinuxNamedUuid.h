// UUIDs that are made from a name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The name-based UUID of RFC 4122, version 5, in a name space of the library's own, in capital
// letters: the same for the same name. The name cannot be found from it unless it can be guessed.
// Absent when there is no SHA-1.
[[nodiscard]] std::optional<std::string> zrm_namedUuid(std::string_view name);
