// Reading the arguments of commands.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "ZRMMobileKit/ZRMLoginResult.h"

// "0" to "6", or the text that goes to the server, such as "SUCCESS"; absent for anything else.
std::optional<ZRMLoginResult> zrm_loginResultFromText(std::string_view text);

// A decimal number of seconds, from 0 to a day; absent for anything else.
std::optional<std::chrono::milliseconds> zrm_secondsFromText(std::string_view text);

// A decimal number, such as "-16.37"; absent for anything else.
std::optional<double> zrm_numberFromText(std::string_view text);

// "on" or "off"; absent for anything else.
std::optional<bool> zrm_switchFromText(std::string_view text);
