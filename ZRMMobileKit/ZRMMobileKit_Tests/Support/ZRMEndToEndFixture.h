// A host application on a simulated device: the public service over the whole library, and the
// events that the far end of the network got.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceImpl.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMFakeSettingsProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMHandlerRecord.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

class ZRMEndToEndFixture : public testing::Test {
  protected:
    static constexpr const char* kUrl = "https://risk.example.com/stat?cid=mybank";

    ZRMEndToEndFixture();

    // Makes the service anew and activates it; the record of the activation's handler.
    ZRMHandlerRecord activate();
    // The same for a service with settings of the test's own, as a server would have set them.
    ZRMHandlerRecord activateWith(const ZRMMobileServiceSettings& settings);
    // The process ends and a new one begins on the same device.
    void restart();

    // The inner objects of the events of that type that arrived, oldest first.
    [[nodiscard]] std::vector<ZRMDictionary> events(const std::string& type) const;
    // What one upload carried, unpacked step by step; fails the test when a step does.
    static ZRMDictionary unpacked(const ZRMUrlRequest& upload);

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMMobileServiceConfiguration configuration_;
    std::shared_ptr<ZRMMobileService> service_;
    // The service of activateWith().
    std::shared_ptr<ZRMMobileServiceImpl> impl_;
    std::shared_ptr<ZRMFakeSettingsProvider> settingsProvider_;
};
