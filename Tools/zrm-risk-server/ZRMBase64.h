// base64 as documents write it.
#pragma once

#include <string>
#include <string_view>

// Standard base64 with its padding, without line breaks.
std::string zrm_base64Text(std::string_view bytes);
// base64url without padding.
std::string zrm_base64UrlText(std::string_view bytes);
