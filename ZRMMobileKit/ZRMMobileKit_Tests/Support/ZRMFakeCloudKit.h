// An event core that records what it is asked, and its provider.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKit.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitProvider.h"

class ZRMFakeCloudKit final : public ZRMCloudKit {
  public:
    std::vector<std::string> calls;
    std::vector<std::vector<std::string>> logs;
    std::vector<CompletionHandler> locationRequests;
    std::string tag;
    std::string secureTag;
    std::size_t pendingEvents = 0;
    bool started = false;
    std::size_t unstoredEvents = 0;

    void start() override {
        calls.emplace_back("start");
        started = true;
    }
    [[nodiscard]] bool isStarted() const override { return started; }
    [[nodiscard]] std::string deviceTag() const override { return tag; }
    [[nodiscard]] std::string secureDeviceTag() const override { return secureTag; }
    [[nodiscard]] std::size_t pendingEventCount() const override { return pendingEvents; }
    [[nodiscard]] std::size_t unstoredEventCount() const override { return unstoredEvents; }

    void sendUserLogin(const std::string& userName, const std::string& result,
                       const std::string& userId) override {
        calls.push_back("login '" + userName + "' '" + result + "' '" + userId + "'");
    }
    void sendUserLogout() override { calls.emplace_back("logout"); }
    void sendUINavigationPoint(const std::string& navigationPoint) override {
        calls.push_back("navigation '" + navigationPoint + "'");
    }
    void sendSessionId(const std::string& identifier) override {
        calls.push_back("session '" + identifier + "'");
    }
    void sendDeviceCoordinatesWithAccuracy(double accuracy, double maxDetectionDuration,
                                           CompletionHandler completionHandler) override {
        calls.push_back("location " + std::to_string(accuracy) + " " +
                        std::to_string(maxDetectionDuration));
        locationRequests.push_back(std::move(completionHandler));
    }
    void sendApplicationMd5() override { calls.emplace_back("md5"); }
    void sendFingerprint() override { calls.emplace_back("fingerprint"); }
    void sendDeviceJailbreak() override { calls.emplace_back("jailbreak"); }
    void sendTouchIdChanged() override { calls.emplace_back("touchId"); }
    void sendApplicationSignature() override { calls.emplace_back("signature"); }
    void sendLogEvent(const std::vector<std::string>& theLogs) override { logs.push_back(theLogs); }
    void sendConfigEvent() override { calls.emplace_back("config"); }
    void sendScreenRecordingEventWithPolicy(const ZRMScreenRecordingEventPolicy& policy) override {
        calls.push_back("screenRecording " + std::to_string(policy.numberOfRetryAttempts()) + " " +
                        std::to_string(static_cast<int>(policy.retryInterval())));
    }
    void sendCallInfoEventWithPolicy(const ZRMCallInfoEventPolicy& policy) override {
        calls.push_back("callInfo " + std::to_string(policy.activeStateCheckCount()) + " " +
                        std::to_string(static_cast<int>(policy.activeStateCheckInterval())));
    }
    void sendVpnEvent() override { calls.emplace_back("vpn"); }
    void sendScreenshotEvent() override { calls.emplace_back("screenshot"); }
};

// Hands out one fake core and keeps what it was asked with.
class ZRMFakeCloudKitProvider final : public ZRMCloudKitProvider {
  public:
    using ZRMCloudKitProvider::ZRMCloudKitProvider;

    std::shared_ptr<ZRMFakeCloudKit> core = std::make_shared<ZRMFakeCloudKit>();
    std::vector<ZRMCloudKitConfiguration> configurations;
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider;

    std::shared_ptr<ZRMCloudKit> cloudKitWithConfiguration(
        const ZRMCloudKitConfiguration& configuration,
        std::shared_ptr<ZRMServerTimeProvider> theServerTimeProvider) override {
        configurations.push_back(configuration);
        serverTimeProvider = std::move(theServerTimeProvider);
        return core;
    }
};
