// Where work runs: serial and concurrent queues, the main queue, threads' identities.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMCondition.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// Numbers are those that settings and callers of the original platform use.
enum class ZRMQualityOfService : int {
    UserInteractive = 33,
    UserInitiated = 25,
    Utility = 17,
    Background = 9,
    Default = -1,
};

// Every operation may be called from any thread.
class ZRMExecutor {
  public:
    virtual ~ZRMExecutor() = default;

    // A new queue of its own; labels need not be unique.
    virtual std::shared_ptr<ZRMQueue> makeSerialQueue(std::string label,
                                                      ZRMQualityOfService qos) = 0;

    // The one shared concurrent queue of that quality of service.
    virtual std::shared_ptr<ZRMQueue> concurrentQueue(ZRMQualityOfService qos) = 0;

    // The application's main serial queue: always the same one.
    virtual std::shared_ptr<ZRMQueue> mainQueue() = 0;

    // The system's number of the calling thread.
    [[nodiscard]] virtual std::uint64_t currentThreadIdentifier() const = 0;

    virtual std::unique_ptr<ZRMCondition> makeCondition() = 0;
};
