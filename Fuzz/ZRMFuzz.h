// What every fuzz target includes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

// The target's body: asserts what holds for these bytes.
void zrm_fuzz(std::span<const std::uint8_t> input);

inline std::string_view zrm_textOfInput(std::span<const std::uint8_t> input) {
    return {reinterpret_cast<const char*>(input.data()), input.size()};
}

// Ends the run with a report where the property does not hold.
#define ZRM_FUZZ_ASSERT(property)                                                              \
    do {                                                                                       \
        if (!(property)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #property); \
            std::abort();                                                                      \
        }                                                                                      \
    } while (false)
