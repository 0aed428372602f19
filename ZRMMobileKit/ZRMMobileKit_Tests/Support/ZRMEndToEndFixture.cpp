#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMEndToEndFixture.h"

#include <algorithm>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"

ZRMEndToEndFixture::ZRMEndToEndFixture() {
    const auto model = ZRMLinuxFileManager().readFile(
        ZRM_SOURCE_DIR
        "/ZRMStatistics/Resources/ZRMStatisticsResources.bundle/ZRMStatisticsModel.json");
    device_.resourceBundles().put("ZRMStatisticsResources.bundle", "ZRMStatisticsModel.json",
                                  model.value());
    configuration_.setStatisticsUrl(kUrl);
}

ZRMHandlerRecord ZRMEndToEndFixture::activate() {
    service_ = ZRMMobileService::createServiceWithConfiguration(configuration_);
    ZRMHandlerRecord record;
    service_->activateWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    return record;
}

ZRMHandlerRecord ZRMEndToEndFixture::activateWith(const ZRMMobileServiceSettings& settings) {
    settingsProvider_ = std::make_shared<ZRMFakeSettingsProvider>();
    settingsProvider_->settings = settings;
    impl_ = std::make_shared<ZRMMobileServiceImpl>(device_.platform(), configuration_,
                                                   settingsProvider_);
    ZRMHandlerRecord record;
    impl_->activateWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    return record;
}

void ZRMEndToEndFixture::restart() {
    device_.killProcess();
    service_.reset();
    impl_.reset();
    device_.restartProcess();
}

std::vector<ZRMDictionary> ZRMEndToEndFixture::events(const std::string& type) const {
    std::vector<ZRMDictionary> found;
    for (const auto& record :
         const_cast<ZRMSimulatedDevice&>(device_).network().requestsTo("/stat")) {
        const auto event = unpacked(record.request);
        if (const auto* const body = event.if_contains(type)) {
            found.push_back(body->as_object());
        }
    }
    return found;
}

ZRMDictionary ZRMEndToEndFixture::unpacked(const ZRMUrlRequest& upload) {
    const auto body = upload.body ? *upload.body : ZRMData{};
    EXPECT_TRUE(zrm_isGzipData(body));
    const auto jws = zrm_jsonFromData(zrm_ungzipData(body)).value().as_object();
    EXPECT_EQ(jws.at("signatures"), ZRMJsonArray());
    // Standard padding, which the library's own base64url helper does not make.
    std::string payload(jws.at("payload").as_string());
    std::ranges::replace(payload, '-', '+');
    std::ranges::replace(payload, '_', '/');
    payload.append((4 - payload.size() % 4) % 4, '=');
    const auto content = zrm_jsonFromData(zrm_dataFromBase64String(payload).value()).value();
    const auto& events = content.as_object().at("array").as_array();
    EXPECT_EQ(content.as_object().size(), 1u);
    EXPECT_EQ(events.size(), 1u);
    return events.at(0).as_object();
}
