#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

std::string zrm_logText(const void* object, std::string_view file, int line,
                        std::string_view text) {
    const auto lastComponent = file.substr(file.find_last_of('/') + 1);
    std::string whole = "<";
    whole.append(zrm_addressText(object)).append(" ").append(lastComponent).append(":(");
    whole.append(std::to_string(line)).append(")> ").append(text);
    return whole;
}

namespace {

// The shared collection, remembered by each thread: log lines are asked for far more often than
// platforms are installed, and the way through the installed platform takes two locks. Weak, so
// that a thread does not keep the collection of a platform that is gone.
std::shared_ptr<ZRMLoggerCollection> sharedLoggers() {
    struct Remembered {
        std::uint64_t generation = 0;
        std::weak_ptr<ZRMLoggerCollection> loggers;
    };
    thread_local Remembered remembered;

    const auto generation = ZRMPlatform::generation();
    auto loggers = remembered.loggers.lock();
    if (loggers == nullptr || remembered.generation != generation) {
        loggers = ZRMLoggerCollection::sharedInstance();
        remembered = {generation, loggers};
    }
    return loggers;
}

void logAtLevel(const void* object, std::string_view text, const char* file, int line,
                ZRMLogLevel level) {
    const auto loggers = sharedLoggers();
    if (loggers->accepts(level)) {
        loggers->logMessage(zrm_logText(object, file, line, text), level);
    }
}

}  // namespace

void zrm_logError(const void* object, std::string_view text, const char* file, int line) {
    logAtLevel(object, text, file, line, kZRMLogLevelError);
}

void zrm_logVerbose(const void* object, std::string_view text, const char* file, int line) {
    logAtLevel(object, text, file, line, kZRMLogLevelVerbose);
}

bool zrm_isLogLevelAccepted(ZRMLogLevel level) {
    return sharedLoggers()->accepts(level);
}
