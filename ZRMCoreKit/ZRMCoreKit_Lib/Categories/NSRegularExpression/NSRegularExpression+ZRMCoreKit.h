// The check of HTTP URLs by their text.
#pragma once

#include <memory>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMRegularExpression.h"

// The expression of an HTTP URL with an optional scheme, a host with a top-level domain of two or
// three letters, an optional port and anything of a path and query. Made on first use and shared;
// may be used from any thread.
[[nodiscard]] std::shared_ptr<const ZRMRegularExpression> zrm_httpUrlRegularExpression();

// Whether the first match in the text is the whole text.
[[nodiscard]] bool zrm_fullStringMatch(const ZRMRegularExpression& expression,
                                       std::string_view text);

// Whether the whole text matches zrm_httpUrlRegularExpression().
[[nodiscard]] bool zrm_isValidHttpUrlString(std::string_view text);
