// An event core on a simulated device, with a statistics service that records.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitImpl.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMRecordingStatisticsService.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

// What the core made its statistics service from.
struct ZRMStatisticsRequestRecord {
    std::string url;
    std::string storagePath;
    std::shared_ptr<ZRMStatisticsCustomHeadersProvider> customHeadersProvider;
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider;
};

class ZRMCloudKitFixture : public testing::Test {
  protected:
    static constexpr const char* kDataDirectory = "/device/data";
    static constexpr const char* kArchivePath = "/device/data/ZRMCloudKit/ZRMCloudKitSettings";
    static constexpr const char* kDeviceTagAccount = "ZRMDeviceTag";

    ZRMCloudKitFixture() {
        configuration_ = ZRMCloudKitConfiguration::configuration();
        configuration_.dataDirectory = kDataDirectory;
    }

    // A core of the current process, with the configuration and the detectors as they stand.
    std::shared_ptr<ZRMCloudKitImpl> makeCore() {
        return ZRMCloudKitImpl::cloudKitWithConfiguration(
            device_.platform(), configuration_, serverTimeProvider_, detectors_,
            [this](const std::string& url, const std::string& storagePath,
                   const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& headers,
                   std::shared_ptr<ZRMServerTimeProvider> serverTime) {
                requests_.push_back({url, storagePath, headers, std::move(serverTime)});
                return service_;
            });
    }
    std::shared_ptr<ZRMCloudKitImpl> makeStartedCore() {
        auto core = makeCore();
        core->start();
        return core;
    }

    // The type of each event sent so far.
    [[nodiscard]] std::vector<std::string> sentTypes() const {
        std::vector<std::string> types;
        for (const auto& sent : service_->sent) {
            types.emplace_back(sent.parameters.begin()->key());
        }
        return types;
    }
    // The inner object of one of them.
    [[nodiscard]] const ZRMDictionary& sentBody(std::size_t index) const {
        return service_->sent.at(index).parameters.begin()->value().get_object();
    }
    [[nodiscard]] std::int16_t sentPriority(std::size_t index) const {
        return service_->sent.at(index).priority;
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMCloudKitConfiguration configuration_;
    ZRMCloudKitDetectors detectors_;
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    std::shared_ptr<ZRMRecordingStatisticsService> service_ =
        std::make_shared<ZRMRecordingStatisticsService>();
    std::vector<ZRMStatisticsRequestRecord> requests_;
};
