// Routes that a test sets and changes that it announces.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxRouteChanges.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"

// Indexes of two interfaces.
inline constexpr std::uint32_t kZRMStubWifi = 2;
inline constexpr std::uint32_t kZRMStubModem = 3;

// Answers what was set, at first that everything goes by kZRMStubWifi.
class ZRMStubRoutes : public ZRMLinuxRoutes {
  public:
    [[nodiscard]] std::optional<std::uint32_t> interfaceToward(
        const ZRMLinuxIpAddress& address) const override {
        const std::lock_guard lock(mutex_);
        lastAsked_ = address;
        return toward_;
    }
    [[nodiscard]] std::optional<std::uint32_t> interfaceOfDefaultRoute() const override {
        const std::lock_guard lock(mutex_);
        return ofDefault_;
    }
    void set(std::optional<std::uint32_t> toward, std::optional<std::uint32_t> ofDefault) {
        const std::lock_guard lock(mutex_);
        toward_ = toward;
        ofDefault_ = ofDefault;
    }
    [[nodiscard]] std::optional<ZRMLinuxIpAddress> lastAsked() const {
        const std::lock_guard lock(mutex_);
        return lastAsked_;
    }

  private:
    mutable std::mutex mutex_;
    mutable std::optional<ZRMLinuxIpAddress> lastAsked_;
    std::optional<std::uint32_t> toward_ = kZRMStubWifi;
    std::optional<std::uint32_t> ofDefault_ = kZRMStubWifi;
};

// Tells its listeners when the test says so. One thread.
class ZRMStubRouteChanges : public ZRMLinuxRouteChanges {
  public:
    bool addListener(const std::shared_ptr<ZRMLinuxRouteListener>& listener) override {
        listeners.push_back(listener);
        return isWatching;
    }
    void announce() {
        for (const auto& each : listeners) {
            if (const auto listener = each.lock()) {
                listener->routesChanged();
            }
        }
    }

    bool isWatching = true;
    std::vector<std::weak_ptr<ZRMLinuxRouteListener>> listeners;
};
