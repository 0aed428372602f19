// How the library's code writes a log line: zrm_logError(this, "text").
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"

// "<%p %@:(%d)> %@": the logging object (or null for a free function), the last path component of
// the source file, the line, the text.
std::string zrm_logText(const void* object, std::string_view file, int line, std::string_view text);

// Passes the text to the shared logger collection; the caller's file and line are taken by default.
void zrm_logError(const void* object, std::string_view text, const char* file = __builtin_FILE(),
                  int line = __builtin_LINE());
void zrm_logVerbose(const void* object, std::string_view text, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE());

// The same for a text that is only made when some logger takes it.
template <class MakeText>
requires std::is_invocable_r_v<std::string, MakeText>
void zrm_logVerbose(const void* object, const MakeText& makeText,
                    const char* file = __builtin_FILE(), int line = __builtin_LINE());

// Whether some logger of the shared collection takes messages of that level.
[[nodiscard]] bool zrm_isLogLevelAccepted(ZRMLogLevel level);

template <class MakeText>
requires std::is_invocable_r_v<std::string, MakeText>
void zrm_logVerbose(const void* object, const MakeText& makeText, const char* file, int line) {
    if (zrm_isLogLevelAccepted(kZRMLogLevelVerbose)) {
        zrm_logVerbose(object, std::string_view(makeText()), file, line);
    }
}
