// What ZRMPlatform.h and ZRMProcessInstances.h promise.
#include <gtest/gtest.h>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

struct First {
    int number = 1;
};
struct Second {
    std::shared_ptr<First> first;
};

std::shared_ptr<First> firstOf(ZRMProcessInstances& instances) {
    return instances.shared<First>([] { return std::make_shared<First>(); });
}

class Installation {
  public:
    ~Installation() { ZRMPlatform::install(nullptr); }
};

}  // namespace

TEST(ZRMPlatform, TheInstalledPlatformIsTheCurrentOne) {
    const Installation end;
    const auto platform = std::make_shared<const ZRMPlatform>();
    ZRMPlatform::install(platform);
    EXPECT_EQ(ZRMPlatform::current(), platform);
    const auto other = std::make_shared<const ZRMPlatform>();
    ZRMPlatform::install(other);
    EXPECT_EQ(ZRMPlatform::current(), other);
}

TEST(ZRMPlatform, WhereNoneWasInstalledTheDefaultOneIsMadeOnce) {
    const Installation end;
    ZRMPlatform::install(nullptr);
    const auto made = ZRMPlatform::current();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(ZRMPlatform::current(), made);
}

TEST(ZRMProcessInstances, MakesOneInstanceATypeOnFirstUse) {
    ZRMProcessInstances instances;
    const auto first = firstOf(instances);
    first->number = 2;
    EXPECT_EQ(firstOf(instances), first);
    EXPECT_EQ(firstOf(instances)->number, 2);
}

TEST(ZRMProcessInstances, PlatformsHaveInstancesOfTheirOwn) {
    ZRMPlatform one;
    ZRMPlatform other;
    EXPECT_NE(firstOf(*one.instances), firstOf(*other.instances));
}

TEST(ZRMProcessInstances, MakingOneInstanceMayAskForAnother) {
    ZRMProcessInstances instances;
    const auto second = instances.shared<Second>(
        [&] { return std::make_shared<Second>(Second{firstOf(instances)}); });
    EXPECT_EQ(second->first, firstOf(instances));
}

TEST(ZRMProcessInstances, DroppingEverythingFreesTheInstancesAndLaterOnesAreNew) {
    ZRMProcessInstances instances;
    const std::weak_ptr<First> first = firstOf(instances);
    instances.dropEverything();
    EXPECT_TRUE(first.expired());
    EXPECT_EQ(firstOf(instances)->number, 1);
}
