// A host that knows the public headers alone, over the library as it is delivered.
#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMDeviceSignals.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

namespace {

class ZRMLibrary : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        ZRMLinuxPlatformOptions options;
        options.homeDirectory = testing::TempDir() + "zrm-library-test";
        ZRMPlatform::install(zrm_makeLinuxPlatform(options));
    }

    std::shared_ptr<ZRMMobileService> service_ = ZRMMobileService::createServiceWithConfiguration(
        ZRMMobileServiceConfiguration::configuration());
};

}  // namespace

TEST_F(ZRMLibrary, AnswersAHostBeforeActivation) {
    std::optional<ZRMError> received;
    service_->sendLogin("user", ZRMLoginResult::Success,
                        [&](const std::optional<ZRMError>& error) { received = error; });
    ASSERT_TRUE(received);
    EXPECT_EQ(received->domain(), kZRMMobileKitErrorDomain);
    EXPECT_EQ(received->code(), ZRMMobileKitErrorServiceNotReady);
    EXPECT_EQ(service_->version(), kZRMMobileKitVersion);
    EXPECT_EQ(service_->deviceTag(), std::nullopt);
}

TEST_F(ZRMLibrary, ItsExceptionsAreCaughtByTheHost) {
    EXPECT_THROW(service_->sendLogin("user", static_cast<ZRMLoginResult>(7)), ZRMAssertionFailure);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    EXPECT_THROW(ZRMMobileService(), ZRMInvalidArgument);
#pragma GCC diagnostic pop
}

TEST_F(ZRMLibrary, WhatTheHostTellsOfTheDeviceIsHeard) {
    const auto calls = ZRMPlatform::current()->calls;
    EXPECT_TRUE(calls->calls().empty());
    EXPECT_TRUE(ZRMDeviceSignals::updateCall({.uuid = "A", .hasConnected = true}));
    ASSERT_EQ(calls->calls().size(), 1u);
    EXPECT_EQ(calls->calls().front().uuid, "A");
    EXPECT_TRUE(ZRMDeviceSignals::updateCall({.uuid = "A", .hasEnded = true}));
    EXPECT_TRUE(calls->calls().empty());
}
