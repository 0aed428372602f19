// Detectors that answer what a test sets and keep the callbacks they were given.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCloudKitDetectors.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"

class ZRMFakeTouchId final : public ZRMTouchIdSensing {
  public:
    explicit ZRMFakeTouchId(ZRMTouchIdInfo info) : current(std::move(info)) {}
    ZRMTouchIdInfo currentTouchIdInfo() override { return current; }
    ZRMTouchIdInfo current;
};

class ZRMFakeBundleHasher final : public ZRMBundleHashing {
  public:
    explicit ZRMFakeBundleHasher(std::optional<ZRMData> digest) : md5(std::move(digest)) {}
    std::optional<ZRMData> md5ForDirectoryAtPath(const std::string& path) override {
        paths.push_back(path);
        return md5;
    }
    std::optional<ZRMData> md5;
    std::vector<std::string> paths;
};

class ZRMFakeScreenRecordingDetector final : public ZRMScreenRecordingDetecting {
  public:
    explicit ZRMFakeScreenRecordingDetector(const ZRMScreenRecordingEventPolicy& thePolicy)
        : policy(thePolicy) {}
    void startDetection(std::function<void(bool)> completionHandler) override {
        report = std::move(completionHandler);
    }
    ZRMScreenRecordingEventPolicy policy;
    std::function<void(bool)> report;
};

class ZRMFakeVpnDetector final : public ZRMVpnDetecting {
  public:
    explicit ZRMFakeVpnDetector(bool isConnected) : connected(isConnected) {}
    [[nodiscard]] bool isVpnConnected() const override { return connected; }
    void startDetection(std::function<void(bool)> completionHandler) override {
        report = std::move(completionHandler);
    }
    bool connected;
    std::function<void(bool)> report;
};

class ZRMFakeScreenshotDetector final : public ZRMScreenshotDetecting {
  public:
    void startDetection(std::function<void()> completionHandler) override {
        report = std::move(completionHandler);
    }
    std::function<void()> report;
};

// Notes the order of what is asked of it.
class ZRMFakeCallObserver final : public ZRMCallObserving {
  public:
    void setDelegate(std::weak_ptr<ZRMCallObserverDelegate> theDelegate) override {
        steps.emplace_back("setDelegate");
        delegate = std::move(theDelegate);
    }
    void setEventPolicy(std::optional<ZRMCallInfoEventPolicy> thePolicy) override {
        steps.emplace_back("setEventPolicy");
        policy = thePolicy;
    }
    void start() override { steps.emplace_back("start"); }
    [[nodiscard]] std::vector<ZRMCall> calls() const override { return current; }

    std::vector<std::string> steps;
    std::weak_ptr<ZRMCallObserverDelegate> delegate;
    std::optional<ZRMCallInfoEventPolicy> policy;
    std::vector<ZRMCall> current;
};

// An event with a type and nothing else.
class ZRMNamedEvent final : public ZRMCloudKitEvent {
  public:
    explicit ZRMNamedEvent(std::string type,
                           std::shared_ptr<const ZRMCommonParametersProvider> provider)
        : type_(std::move(type)), provider_(std::move(provider)) {}
    [[nodiscard]] std::uint64_t structVersion() const override { return 1; }
    [[nodiscard]] ZRMEventPermissions permissions() const override {
        return kZRMEventPermissionNone;
    }
    [[nodiscard]] ZRMDictionary parameters() const override {
        return {{type_, provider_->parametersWithStructVersion(1, kZRMEventPermissionNone)}};
    }

  private:
    std::string type_;
    std::shared_ptr<const ZRMCommonParametersProvider> provider_;
};

class ZRMFakeEventSource final : public ZRMEventSource {
  public:
    explicit ZRMFakeEventSource(std::string type) : type_(std::move(type)) {}
    std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(const ZRMEventProvider& provider) override {
        return std::make_shared<ZRMNamedEvent>(type_, provider.commonParametersProvider());
    }

  private:
    std::string type_;
};

// Runs until a test finishes it.
class ZRMFakeLocationDetection final : public ZRMLocationDetection {
  public:
    using ZRMLocationDetection::ZRMLocationDetection;
    std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(
        std::shared_ptr<const ZRMCommonParametersProvider> provider) const override {
        return std::make_shared<ZRMNamedEvent>("IOSGeoLocationEvent", std::move(provider));
    }
    void end(std::optional<ZRMError> error) { finishWithError(std::move(error)); }

  protected:
    void execute() override {}
};

class ZRMFakeDeviceLocator final : public ZRMDeviceLocating {
  public:
    explicit ZRMFakeDeviceLocator(std::shared_ptr<ZRMConsoleLog> console)
        : console_(std::move(console)) {}
    std::shared_ptr<ZRMLocationDetection> makeDetection() override {
        detections.push_back(std::make_shared<ZRMFakeLocationDetection>(console_));
        return detections.back();
    }
    std::vector<std::shared_ptr<ZRMFakeLocationDetection>> detections;

  private:
    std::shared_ptr<ZRMConsoleLog> console_;
};

class ZRMFakeSecureDeviceTagProvider final : public ZRMSecureDeviceTagProviding {
  public:
    explicit ZRMFakeSecureDeviceTagProvider(std::string theTag) : tag(std::move(theTag)) {}
    [[nodiscard]] std::string secureDeviceTag() const override { return tag; }
    void refreshIfNeeded() override { ++refreshes; }
    std::string tag;
    int refreshes = 0;
};
