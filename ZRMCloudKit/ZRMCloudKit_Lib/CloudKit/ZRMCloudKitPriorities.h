// The order in which the queue of events uploads what earlier runs left: smaller numbers first.
#pragma once

#include <cstdint>

inline constexpr std::int16_t kZRMEventPriorityUrgent = 1;  // calls and screen recording
inline constexpr std::int16_t kZRMEventPriorityUser = 2;    // login, logout and location
inline constexpr std::int16_t kZRMEventPriorityUsual = 3;   // everything else
