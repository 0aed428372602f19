// Who observes something of a simulated device.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <utility>

#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Ports/ZRMSubscription.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// One thread. Observers of a process that ended hear nothing any more.
template <class... Values>
class ZRMSimulatedListeners {
  public:
    using Callback = std::function<void(const Values&...)>;

    [[nodiscard]] std::shared_ptr<ZRMSubscription> add(std::shared_ptr<ZRMSimulatedProcess> process,
                                                       std::shared_ptr<ZRMQueue> queue,
                                                       Callback callback) {
        std::erase_if(listeners_, [](const auto& each) { return each.expired(); });
        auto listener =
            std::make_shared<Listener>(std::move(process), std::move(queue), std::move(callback));
        listeners_.push_back(listener);
        return listener;
    }

    void tell(const Values&... values) const {
        for (const auto& each : listeners_) {
            const auto listener = each.lock();
            if (!listener || !listener->process->isAlive()) {
                continue;
            }
            listener->queue->post([each, values...] {
                if (const auto still = each.lock()) {
                    still->callback(values...);
                }
            });
        }
    }

  private:
    struct Listener final : ZRMSubscription {
        Listener(std::shared_ptr<ZRMSimulatedProcess> ofProcess, std::shared_ptr<ZRMQueue> onto,
                 Callback call)
            : process(std::move(ofProcess)), queue(std::move(onto)), callback(std::move(call)) {}

        std::shared_ptr<ZRMSimulatedProcess> process;
        std::shared_ptr<ZRMQueue> queue;
        Callback callback;
    };

    std::list<std::weak_ptr<Listener>> listeners_;
};
