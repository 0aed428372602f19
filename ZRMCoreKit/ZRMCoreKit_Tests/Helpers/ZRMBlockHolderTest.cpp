#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMBlockHolder.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

TEST(ZRMBlockHolder, CallsItsBlockAtEachInvocation) {
    int calls = 0;
    const auto holder = ZRMBlockHolder::holderWithBlock([&] { ++calls; });
    EXPECT_EQ(calls, 0);
    holder->invoke();
    holder->invoke();
    EXPECT_EQ(calls, 2);
}

TEST(ZRMBlockHolder, RefusesAnEmptyBlock) {
    EXPECT_THROW(ZRMBlockHolder::holderWithBlock(nullptr), ZRMInvalidArgument);
}

}  // namespace
