#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDetectDeviceLocationOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

const ZRMLocation kGoodFix{48.2, 16.4, 8};

class ZRMDetectDeviceLocationOperationTest : public testing::Test {
  protected:
    ZRMDetectDeviceLocationOperationTest() {
        device_.location().setStatus(ZRMLocationAuthorizationAlways);
    }
    std::shared_ptr<ZRMDetectDeviceLocationOperation> started() {
        auto operation =
            std::make_shared<ZRMDetectDeviceLocationOperation>(device_.platform(), locator_);
        queue_.addOperation(operation);
        device_.runUntilIdle();
        return operation;
    }

    ZRMSimulatedDevice device_;
    std::shared_ptr<ZRMDeviceLocator> locator_ = ZRMDeviceLocator::deviceLocatorWithLocationManager(
        device_.platform(), device_.platform()->locationServices->makeLocationManager(10), 10);
    ZRMOperationQueue queue_{device_.platform()->executor, "queue"};
};

TEST_F(ZRMDetectDeviceLocationOperationTest, RunsUntilTheLocatorAnswersAndKeepsTheLocation) {
    const auto operation = started();
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_EQ(operation->location(), std::nullopt);
    device_.location().deliver({kGoodFix});
    device_.runUntilIdle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(operation->location(), kGoodFix);
    EXPECT_EQ(operation->error(), std::nullopt);
}

TEST_F(ZRMDetectDeviceLocationOperationTest, FinishesWithTheLocatorsError) {
    const auto operation = started();
    device_.advanceBy(10);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(operation->location(), std::nullopt);
    EXPECT_EQ(operation->error(), ZRMError(kZRMLocationErrorDomain, 0));
}

TEST_F(ZRMDetectDeviceLocationOperationTest, AnOverlappingOneEndsTheOneBeforeAndCompletes) {
    const auto first = started();
    const auto second = started();
    EXPECT_TRUE(first->isFinished());
    EXPECT_EQ(first->error(), ZRMError(kZRMLocationErrorDomain, 0));
    device_.location().deliver({kGoodFix});
    device_.runUntilIdle();
    EXPECT_TRUE(second->isFinished());
    EXPECT_EQ(second->location(), kGoodFix);
    EXPECT_EQ(second->error(), std::nullopt);
    EXPECT_EQ(first->location(), std::nullopt);
}

TEST_F(ZRMDetectDeviceLocationOperationTest, ACancelledOneFinishesAndTakesNoLaterAnswer) {
    const auto operation = started();
    operation->cancel();
    EXPECT_TRUE(operation->isFinished());
    device_.location().deliver({kGoodFix});
    device_.runUntilIdle();
    EXPECT_EQ(operation->error(), std::nullopt);
    EXPECT_FALSE(locator_->isDetectingLocation());
}

TEST_F(ZRMDetectDeviceLocationOperationTest, IsMadeByTheLocator) {
    const auto detection = locator_->makeDetection();
    EXPECT_FALSE(detection->isExecuting());
    EXPECT_NE(std::dynamic_pointer_cast<ZRMDetectDeviceLocationOperation>(detection), nullptr);
    EXPECT_NE(detection, locator_->makeDetection());
}

}  // namespace
