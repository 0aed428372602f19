// A call observer on a simulated device and what it told.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CallObserver/ZRMCallObserver.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

// "changed" or "active", the call's UUID, and the seconds since the test began.
struct ZRMToldCall {
    std::string what;
    std::string uuid;
    double atSeconds;

    friend bool operator==(const ZRMToldCall&, const ZRMToldCall&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ZRMToldCall& told) {
        return out << told.what << " " << told.uuid << " at " << told.atSeconds;
    }
};

class ZRMCallRecorder final : public ZRMCallObserverDelegate {
  public:
    explicit ZRMCallRecorder(ZRMSimulatedDevice& device) : device_(device) {}

    void connectedCallChanged(const ZRMCallObserving& /*observer*/, const ZRMCall& call) override {
        add("changed", call);
    }
    void connectedCallStillActive(const ZRMCallObserving& /*observer*/,
                                  const ZRMCall& call) override {
        add("active", call);
    }

    std::vector<ZRMToldCall> told;
    std::vector<ZRMCall> calls;
    std::vector<std::uint64_t> threads;

  private:
    void add(std::string what, const ZRMCall& call) {
        told.push_back(
            {std::move(what), call.uuid.value_or("none"), device_.now().secondsSince(begin_)});
        calls.push_back(call);
        threads.push_back(device_.executor().currentThreadIdentifier());
    }

    ZRMSimulatedDevice& device_;
    const ZRMDate begin_ = device_.now();
};

class ZRMCallObserverFixture : public testing::Test {
  protected:
    ZRMCallObserverFixture() { observer_->setDelegate(recorder_); }

    static ZRMCall connectedCall(std::optional<std::string> uuid) {
        ZRMCall call;
        call.uuid = std::move(uuid);
        call.hasConnected = true;
        return call;
    }
    static ZRMCall endedCall(std::optional<std::string> uuid, bool hasConnected = true) {
        auto call = connectedCall(std::move(uuid));
        call.hasConnected = hasConnected;
        call.hasEnded = true;
        return call;
    }
    // Tells the observer, when it has started.
    void update(const ZRMCall& call) {
        device_.calls().update(call);
        device_.runUntilIdle();
    }
    void start() {
        observer_->start();
        device_.runUntilIdle();
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::shared_ptr<ZRMCallRecorder> recorder_ = std::make_shared<ZRMCallRecorder>(device_);
    std::shared_ptr<ZRMCallObserver> observer_ = ZRMCallObserver::sharedInstance();
};
