// The public class, on a device that has only just been made.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMHandlerRecord.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::Contains;
using testing::IsEmpty;

class ZRMMobileServiceTest : public testing::Test {
  protected:
    ZRMMobileServiceTest() {
        device_.resourceBundles().put("ZRMMobileKitResources.bundle", "VelorinRootCA.crt", {});
        service_ = ZRMMobileService::createServiceWithConfiguration(
            ZRMMobileServiceConfiguration::configuration());
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    std::shared_ptr<ZRMMobileService> service_;
};

}  // namespace

TEST_F(ZRMMobileServiceTest, PlainConstructorLogsTheAdviceAndThrows) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    EXPECT_THROW(ZRMMobileService(), ZRMInvalidArgument);
#pragma GCC diagnostic pop
    EXPECT_EQ(log_.errors(),
              std::vector<std::string>{"Don't use this initializer, use "
                                       "+(instancetype)createServiceWithConfiguration: instead"});
}

TEST_F(ZRMMobileServiceTest, EachCallOfTheFactoryMakesANewService) {
    const auto other = ZRMMobileService::createServiceWithConfiguration(
        ZRMMobileServiceConfiguration::configuration());
    EXPECT_NE(service_, other);
}

TEST_F(ZRMMobileServiceTest, VersionIsTheLibrarys) {
    EXPECT_EQ(service_->version(), "3.28.0.12");
}

TEST_F(ZRMMobileServiceTest, KnowsNoTagAndNoPendingEventsBeforeActivation) {
    EXPECT_EQ(service_->deviceTag(), std::nullopt);
    EXPECT_EQ(service_->pendingEventCount(), 0u);
}

TEST_F(ZRMMobileServiceTest, OperationsWithoutAHandlerLogTheError) {
    const std::string notReady =
        "Service is not ready for use. Probably, you call some methods before callback received "
        "from -activateWithCompletionHandler: method.";
    service_->analyzeEnvironment();
    service_->sendLogin("user", ZRMLoginResult::Success);
    service_->sendLogin("user", ZRMLoginResult::Success, "name");
    service_->sendLogout();
    service_->sendUINavigationEvent("point");
    service_->sendSessionId("id");
    service_->sendGeoLocation();
    EXPECT_EQ(log_.errors(), std::vector<std::string>(7, notReady));
    service_->sendLogin("", ZRMLoginResult::Success);
    EXPECT_EQ(log_.errors().back(), "Login has invalid format.");
}

TEST_F(ZRMMobileServiceTest, EveryOperationWithAHandlerCallsItAtOnceBeforeActivation) {
    ZRMHandlerRecord record;
    service_->analyzeEnvironmentWithCompletionHandler(record.handler());
    service_->sendLogin("user", ZRMLoginResult::Success, record.handler());
    service_->sendLogin("user", ZRMLoginResult::Success, "name", record.handler());
    service_->sendLogoutWithCompletionHandler(record.handler());
    service_->sendUINavigationEvent("point", record.handler());
    service_->sendSessionId("id", record.handler());
    service_->sendGeoLocationWithCompletionHandler(record.handler());
    ASSERT_EQ(record.count(), 7u);
    for (const auto& call : record.calls()) {
        ASSERT_TRUE(call.error);
        EXPECT_EQ(call.error->code(), 3);
        EXPECT_EQ(call.error->domain(), "com.velorin.zrm.mobilekit");
        EXPECT_FALSE(call.onMainQueue);
    }
}

TEST_F(ZRMMobileServiceTest, EveryOperationLogsItsNameFirst) {
    const auto firstLineOf = [this](const std::function<void()>& operation) {
        const auto before = log_.verboses().size();
        operation();
        const auto lines = log_.verboses();
        return lines.size() > before ? lines[before] : "";
    };
    const auto none = [](const std::optional<ZRMError>&) {};
    EXPECT_EQ(firstLineOf([&] { service_->analyzeEnvironment(); }), "analyzeEnvironment");
    EXPECT_EQ(firstLineOf([&] { service_->analyzeEnvironmentWithCompletionHandler(none); }),
              "analyzeEnvironmentWithCompletionHandler:");
    EXPECT_EQ(firstLineOf([&] { service_->sendLogin("u", ZRMLoginResult::Success); }),
              "sendLogin:result: (null) SUCCESS u");
    EXPECT_EQ(firstLineOf([&] { service_->sendLogin("u", ZRMLoginResult::Success, none); }),
              "sendLogin:result:completionHandler: (null) SUCCESS u");
    EXPECT_EQ(firstLineOf([&] { service_->sendLogin("u", ZRMLoginResult::Success, "n"); }),
              "sendLogin:result:userName: n SUCCESS u");
    EXPECT_EQ(firstLineOf([&] { service_->sendLogin("u", ZRMLoginResult::Success, "n", none); }),
              "sendLogin:result:userName:completionHandler: n SUCCESS u");
    EXPECT_EQ(firstLineOf([&] { service_->sendLogout(); }), "sendLogout");
    EXPECT_EQ(firstLineOf([&] { service_->sendLogoutWithCompletionHandler(none); }),
              "sendLogoutWithCompletionHandler:");
    EXPECT_EQ(firstLineOf([&] { service_->sendUINavigationEvent("p"); }),
              "sendUINavigationEvent: p");
    EXPECT_EQ(firstLineOf([&] { service_->sendUINavigationEvent("p", none); }),
              "sendUINavigationEvent:completionHandler: p");
    EXPECT_EQ(firstLineOf([&] { service_->sendSessionId("s"); }), "sendSessionId: s");
    EXPECT_EQ(firstLineOf([&] { service_->sendSessionId(std::nullopt, none); }),
              "sendSessionId:completionHandler: (null)");
    EXPECT_EQ(firstLineOf([&] { service_->sendGeoLocation(); }), "sendGeoLocation");
    EXPECT_EQ(firstLineOf([&] { service_->sendGeoLocationWithCompletionHandler(none); }),
              "sendGeoLocationWithCompletionHandler:");
    EXPECT_EQ(firstLineOf([&] { static_cast<void>(service_->deviceTag()); }), "deviceTag");
    EXPECT_EQ(firstLineOf([&] { static_cast<void>(service_->version()); }), "version");
    EXPECT_EQ(firstLineOf([&] { service_->startWithCompletionHandler(none); }),
              "startWithCompletionHandler:");
    device_.advanceBy(600);  // what was started ends before the device does
}

TEST_F(ZRMMobileServiceTest, TextThatIsNotUtf8IsRepairedForTheLog) {
    service_->sendSessionId("a\xFF", [](const std::optional<ZRMError>&) {});
    EXPECT_THAT(log_.verboses(), Contains("sendSessionId:completionHandler: a\xEF\xBF\xBD"));
}

TEST_F(ZRMMobileServiceTest, UnsupportedLoginResultIsAnAssertionAndCallsNoHandler) {
    ZRMHandlerRecord record;
    EXPECT_THROW(service_->sendLogin("u", static_cast<ZRMLoginResult>(7), record.handler()),
                 ZRMAssertionFailure);
    EXPECT_THROW(service_->sendLogin("u", static_cast<ZRMLoginResult>(7)), ZRMAssertionFailure);
    EXPECT_EQ(record.count(), 0u);
}

TEST_F(ZRMMobileServiceTest, HandlerCalledAtOnceMayLetGoOfTheService) {
    int calls = 0;
    const auto drop = [&](const std::optional<ZRMError>&) {
        ++calls;
        service_.reset();
    };
    service_->sendLogin("", ZRMLoginResult::Success, drop);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(service_, nullptr);
}
