// Languages, from the names that POSIX locales have to the tags of BCP 47.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// "de_AT.UTF-8@euro" is "de-AT", "sr_RS@latin" is "sr-Latn-RS", "ca_ES@valencia" is
// "ca-ES-valencia". Absent for "C", "POSIX", and what does not begin with a language of two or
// three letters; a territory that is none is left out.
[[nodiscard]] std::optional<std::string> zrm_languageTag(std::string_view locale);
