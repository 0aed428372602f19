#include <gtest/gtest.h>

#include "Tools/zrm-risk-server/ZRMFault.h"

namespace {

using Kind = ZRMFault::Kind;
using std::chrono::milliseconds;

TEST(ZRMFault, ReadsAStatusWithItsCount) {
    const ZRMFault expected{"stat", Kind::Status, 503, milliseconds(0), 3};
    EXPECT_EQ(ZRMFault::parse("stat:503*3"), expected);
}

TEST(ZRMFault, BefallsOneRequestWithoutACount) {
    const ZRMFault expected{"config", Kind::Reset, 0, milliseconds(0), 1};
    EXPECT_EQ(ZRMFault::parse("config:reset"), expected);
}

TEST(ZRMFault, ReadsDelaysInSecondsAndMilliseconds) {
    const ZRMFault seconds{"tag", Kind::Delay, 0, milliseconds(2000), 1};
    EXPECT_EQ(ZRMFault::parse("tag:delay=2s"), seconds);
    const ZRMFault thrice{"tag", Kind::Delay, 0, milliseconds(500), 3};
    EXPECT_EQ(ZRMFault::parse("tag:delay=500ms*3"), thrice);
}

TEST(ZRMFault, ReadsCloseAndGarbage) {
    EXPECT_EQ(ZRMFault::parse("stat:close")->kind, Kind::Close);
    EXPECT_EQ(ZRMFault::parse("stat:garbage")->kind, Kind::Garbage);
}

class ZRMFaultRefusal : public testing::TestWithParam<const char*> {};

TEST_P(ZRMFaultRefusal, RefusesWhatIsNoFault) {
    EXPECT_EQ(ZRMFault::parse(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ZRMFaultRefusal,
    testing::Values("", "stat", "stat:", ":503", "other:503", "STAT:503", "stat:199", "stat:600",
                    "stat:-503", "stat:503x", "stat:503*", "stat:503*0", "stat:503*-1",
                    "stat:503*two", "stat:503*1*1", "stat:delay", "stat:delay=", "stat:delay=2",
                    "stat:delay=s", "stat:delay=-2s", "stat:delay=1.5s", "stat:delay=2m",
                    "stat:delay=18446744073709551615s", "stat:delay=99999999999999999999s",
                    "stat:Close", "stat: close", "stat:503*99999999999999999999"));

TEST(ZRMFaultPlan, TakesFaultsOfAnEndpointInOrderUntilTheyAreUsedUp) {
    ZRMFaultPlan plan({*ZRMFault::parse("stat:503*2"), *ZRMFault::parse("config:reset"),
                       *ZRMFault::parse("stat:close")});
    EXPECT_EQ(plan.take("stat")->status, 503);
    EXPECT_EQ(plan.take("stat")->status, 503);
    EXPECT_EQ(plan.take("stat")->kind, Kind::Close);
    EXPECT_EQ(plan.take("stat"), std::nullopt);
    EXPECT_EQ(plan.take("config")->kind, Kind::Reset);
    EXPECT_EQ(plan.take("config"), std::nullopt);
    EXPECT_EQ(plan.take("tag"), std::nullopt);
}

}  // namespace
