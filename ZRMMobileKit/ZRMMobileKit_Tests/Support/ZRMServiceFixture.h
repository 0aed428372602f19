// A service over two internal services that record what they are asked.
#pragma once

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceImpl.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMFakeInternalService.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMFakeSettingsProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMHandlerRecord.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

class ZRMServiceFixture : public testing::Test {
  protected:
    using Handler = ZRMMobileServiceImpl::CompletionHandler;

    // On a device that has updated its settings just now.
    ZRMServiceFixture() {
        device_.resourceBundles().put("ZRMMobileKitResources.bundle", "VelorinRootCA.crt", {});
        setSettingsUpdated(device_.now());
    }

    void setSettingsUpdated(ZRMDate date) {
        zrm_mobileKitDefaults(*device_.platform()->userDefaults)
            ->setSettingsUpdateTimestamp(date.secondsSince1970);
    }

    // Made at its first use, with the configuration as it is then.
    ZRMMobileServiceImpl& service() {
        if (service_ == nullptr) {
            service_ = std::make_shared<ZRMMobileServiceImpl>(
                device_.platform(), configuration_, provider_,
                [this](const ZRMMobileServiceSettings& settings,
                       const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider,
                       const std::shared_ptr<ZRMMemoryLogger>& memoryLogger) {
                    ++made_;
                    settings_ = settings;
                    serverTimeProvider_ = serverTimeProvider;
                    memoryLogger_ = memoryLogger;
                    return std::vector<std::shared_ptr<ZRMInternalService>>{first_, second_};
                });
        }
        return *service_;
    }
    ZRMHandlerRecord activate() {
        ZRMHandlerRecord record;
        service().activateWithCompletionHandler(record.handler());
        device_.runUntilIdle();
        first_->calls.clear();
        second_->calls.clear();
        return record;
    }
    static ZRMError error(int code) {
        return ZRMError::withDescription("test", code, "error " + std::to_string(code));
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMMobileServiceConfiguration configuration_;
    std::shared_ptr<ZRMFakeSettingsProvider> provider_ =
        std::make_shared<ZRMFakeSettingsProvider>();
    std::shared_ptr<ZRMFakeTaggedService> first_ = std::make_shared<ZRMFakeTaggedService>();
    std::shared_ptr<ZRMFakeTaggedService> second_ = std::make_shared<ZRMFakeTaggedService>();
    std::shared_ptr<ZRMMobileServiceImpl> service_;

    // How often the internal services were made, and with what the last time.
    int made_ = 0;
    ZRMMobileServiceSettings settings_;
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    std::shared_ptr<ZRMMemoryLogger> memoryLogger_;
};
