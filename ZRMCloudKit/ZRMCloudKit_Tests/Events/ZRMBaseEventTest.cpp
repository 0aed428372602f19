#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMBaseEvent.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

TEST(ZRMBaseEvent, KeepsItsProvider) {
    const auto provider = std::make_shared<const ZRMCommonParametersProvider>(
        std::make_shared<ZRMEnvironmentDataImpl>(), nullptr, ZRMDate(), nullptr);
    EXPECT_EQ(ZRMBaseEvent(provider).provider(), provider);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
TEST(ZRMBaseEvent, RefusesPlainConstructionWithALogLine) {
    static constexpr const char* kMessage =
        "Don't use that initializer, use -(instancetype)initWithCommonParametersProvider:";
    const ZRMRecordedLog log;
    EXPECT_THAT([] { ZRMBaseEvent(); }, testing::ThrowsMessage<ZRMInvalidArgument>(kMessage));
    ASSERT_EQ(log.errors(), std::vector<std::string>{kMessage});
    EXPECT_THAT(log.messages().front().first,
                testing::MatchesRegex("<0x[0-9a-f]+ ZRMBaseEvent[.]cpp:[(][0-9]+[)]> Don't.*"));
}
#pragma GCC diagnostic pop

}  // namespace
