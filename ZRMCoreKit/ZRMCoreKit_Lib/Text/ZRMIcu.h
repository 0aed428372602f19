// ICU's functions, from the system's ICU, which is opened when something first needs one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <unicode/ucal.h>
#include <unicode/uchar.h>
#include <unicode/udat.h>
#include <unicode/uregex.h>
#include <unicode/ustring.h>

#define ZRM_ICU_FUNCTIONS(apply) \
    apply(u_charType);           \
    apply(u_errorName);          \
    apply(u_isUWhiteSpace);      \
    apply(u_strToLower);         \
    apply(u_strToUpper);         \
    apply(ucal_close);           \
    apply(ucal_open);            \
    apply(udat_close);           \
    apply(udat_format);          \
    apply(udat_open);            \
    apply(udat_parse);           \
    apply(udat_setCalendar);     \
    apply(udat_setLenient);      \
    apply(uregex_clone);         \
    apply(uregex_close);         \
    apply(uregex_end);           \
    apply(uregex_find);          \
    apply(uregex_lookingAt);     \
    apply(uregex_open);          \
    apply(uregex_setText);       \
    apply(uregex_start)

// Linking ICU costs every process 1.8 MiB and the time to bind its symbols at its start. What most
// events and servers write is settled without.
struct ZRMIcu {
    // Null where the system has no ICU of the release that the library was compiled with. From any
    // thread; the functions live as long as the process.
    static const ZRMIcu* shared();

// NOLINTNEXTLINE(bugprone-macro-parentheses): the last use declares
#define ZRM_ICU_MEMBER(name) decltype(&::name) name = nullptr
    ZRM_ICU_FUNCTIONS(ZRM_ICU_MEMBER);
#undef ZRM_ICU_MEMBER
};

// What a function writes into a buffer whose size it is told: `write(buffer, capacity, &status)`
// returns the length that it needs. Empty when it fails.
template <class Write>
std::u16string zrm_icuText(std::size_t expectedLength, Write write) {
    std::u16string text(expectedLength, u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            write(text.data(), static_cast<std::int32_t>(text.size()), &status);
        const bool isLonger = status == U_BUFFER_OVERFLOW_ERROR;
        text.resize(U_SUCCESS(status) || isLonger ? static_cast<std::size_t>(length) : 0);
        if (!isLonger) {
            return text;
        }
    }
}
