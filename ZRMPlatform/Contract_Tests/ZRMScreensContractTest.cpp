// What the port about screens promises.
#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMScreensContract : public ZRMContract {};

}  // namespace

TEST_P(ZRMScreensContract, AScreenHasASizeAndAScale) {
    const auto screens = platform()->screens->screens();
    EXPECT_EQ(platform()->screens->screens(), screens);
    for (const auto& screen : screens) {
        EXPECT_GE(screen.width, 0);
        EXPECT_GE(screen.height, 0);
        EXPECT_GT(screen.scale, 0);
        EXPECT_GT(screen.nativeScale, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMScreensContract, zrm_contractBodies(), zrm_contractBodyName);
