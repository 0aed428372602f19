// The event core with the real statistics service behind it: what reaches the server.
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// The event in an upload's body, or null.
ZRMJsonValue eventInBody(const ZRMData& body) {
    const auto object = ZRMJwsObject::jwsObjectFromData(zrm_ungzipData(body));
    if (!object || !object.value().signatures().empty()) {
        return nullptr;
    }
    const auto payload =
        zrm_dataFromBase64String(zrm_base64FromBase64UrlString(object.value().payload()));
    const auto json = zrm_jsonFromData(payload.value_or(ZRMData()));
    return json ? json.value().at("array").at(0) : nullptr;
}

TEST(ZRMCloudKitUpload, BringsALoginToTheServerWithTheCoresHeader) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    auto configuration = ZRMCloudKitConfiguration::configuration();
    configuration.statisticsUrl = "https://risk.example.com/stat";
    const auto core =
        ZRMCloudKitProvider::sharedInstance()->cloudKitWithConfiguration(configuration, nullptr);
    core->start();
    core->sendUserLogin("ann", "SUCCESS", std::string("user-\xFF"));
    ASSERT_TRUE(device.runUntil([&] { return core->pendingEventCount() == 0; }, 60));

    const auto requests = device.network().requestsTo("/stat");
    ASSERT_EQ(requests.size(), 1U);
    const auto* header = requests[0].request.headers.find("Mobile-UUID");
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(*header, core->secureDeviceTag());
    EXPECT_TRUE(header->starts_with("L!"));
    const auto event = eventInBody(*requests[0].request.body);
    ASSERT_TRUE(event.is_object());
    const auto& login = event.at("UserLoginEvent");
    EXPECT_EQ(login.at("userName"), "ann");
    EXPECT_EQ(login.at("userId"), "user-\uFFFD");
    EXPECT_EQ(login.at("environmentData").at("deviceTag"), ZRMJsonValue(core->deviceTag()));
}

}  // namespace
