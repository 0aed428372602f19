// One peer whose reachability a simulated process watches.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Simulated/ZRMSimulatedReachability.h"

class ZRMSimulatedReachabilityTarget final
    : public ZRMReachabilityTarget,
      public std::enable_shared_from_this<ZRMSimulatedReachabilityTarget> {
  public:
    ZRMSimulatedReachabilityTarget(std::shared_ptr<ZRMSimulatedReachability> reachability,
                                   std::shared_ptr<ZRMSimulatedProcess> process,
                                   std::string hostName);

    [[nodiscard]] std::optional<std::uint32_t> flags() const override;
    bool setCallback(Callback callback) override;
    bool schedule(const std::shared_ptr<ZRMQueue>& queue) override;
    bool unschedule(const std::shared_ptr<ZRMQueue>& queue) override;

    // Posts the delivery to every scheduled queue when the flags are not those of the last time.
    void deliverChange();

  private:
    [[nodiscard]] bool isScheduledOn(const std::shared_ptr<ZRMQueue>& queue) const;

    std::shared_ptr<ZRMSimulatedReachability> reachability_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::string hostName_;
    Callback callback_;
    std::vector<std::shared_ptr<ZRMQueue>> queues_;
    std::optional<std::uint32_t> lastFlags_;
};
