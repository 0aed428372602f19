// A logger that keeps its lines in memory until somebody takes them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerObserver.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"

class ZRMMemoryLogger : public ZRMLogger {
  public:
    // The lines held, oldest first, without their line feeds.
    [[nodiscard]] virtual std::vector<std::string> logs() const = 0;
    // UTF-8 bytes of the lines held.
    [[nodiscard]] virtual std::int64_t logsSizeInBytes() const = 0;
    // Forgets the lines.
    virtual void clean() = 0;
    // logs() and clean() in one step: no line can come between them and be lost.
    [[nodiscard]] virtual std::vector<std::string> takeLogs() = 0;

    // Observers are held weakly. Not from inside an observer's callback.
    virtual void addObserver(const std::shared_ptr<ZRMMemoryLoggerObserver>& observer) = 0;
    virtual void removeObserver(const ZRMMemoryLoggerObserver* observer) = 0;
};
