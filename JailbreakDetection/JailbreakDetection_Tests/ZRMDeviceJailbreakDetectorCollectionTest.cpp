#include <gtest/gtest.h>

#include "JailbreakDetection/ZRMDeviceJailbreakDetectorCollection.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// Answers what it is told to and counts the questions.
struct FakeDetector final : ZRMDeviceJailbreakDetector {
    FakeDetector(ZRMDeviceJailbreakDetectorType itsType, bool itsAnswer)
        : type(itsType), answer(itsAnswer) {}
    [[nodiscard]] bool isJailbroken() override {
        ++questions;
        return answer;
    }
    [[nodiscard]] ZRMDeviceJailbreakDetectorType detectorType() const override { return type; }

    ZRMDeviceJailbreakDetectorType type;
    bool answer;
    int questions = 0;
};

struct ZRMDeviceJailbreakDetectorCollectionTest : ::testing::Test {
    std::shared_ptr<FakeDetector> first =
        std::make_shared<FakeDetector>(ZRMDeviceJailbreakDetectorFSPermissions, false);
    std::shared_ptr<FakeDetector> second =
        std::make_shared<FakeDetector>(ZRMDeviceJailbreakDetectorUrlSchemes, true);
    std::shared_ptr<FakeDetector> third =
        std::make_shared<FakeDetector>(ZRMDeviceJailbreakDetectorSysCalls, true);

    static std::vector<std::uint32_t> typesOf(std::uint32_t mask) {
        const ZRMSimulatedDevice device;
        std::vector<std::uint32_t> types;
        const auto collection =
            ZRMDeviceJailbreakDetectorCollection::collectionWithDetectors(*device.platform(), mask);
        for (const auto& detector : collection->jailbreakDetectors()) {
            types.push_back(detector->detectorType());
        }
        return types;
    }
};

}  // namespace

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, Mask13HoldsFilesThenUrlSchemesThenSystemCall) {
    EXPECT_EQ(typesOf(13), (std::vector<std::uint32_t>{1, 8, 4}));
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, Mask15EndsWithTheLoadedImages) {
    EXPECT_EQ(typesOf(15), (std::vector<std::uint32_t>{1, 8, 4, 2}));
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, Mask0HoldsNoneAndAnswersFalse) {
    EXPECT_TRUE(typesOf(0).empty());
    EXPECT_FALSE(ZRMDeviceJailbreakDetectorCollection({}, false).isJailbroken());
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, StopsAtTheFirstThatAnswersTrue) {
    ZRMDeviceJailbreakDetectorCollection collection({first, second, third}, false);
    EXPECT_TRUE(collection.isJailbroken());
    EXPECT_EQ(first->questions, 1);
    EXPECT_EQ(second->questions, 1);
    EXPECT_EQ(third->questions, 0);
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, AsksAgainEachTimeWhenNotCaching) {
    ZRMDeviceJailbreakDetectorCollection collection({first, second}, false);
    EXPECT_TRUE(collection.isJailbroken());
    second->answer = false;
    EXPECT_FALSE(collection.isJailbroken());
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, KeepsItsVerdictWhenCaching) {
    ZRMDeviceJailbreakDetectorCollection collection({first, second}, true);
    EXPECT_TRUE(collection.isJailbroken());
    second->answer = false;
    EXPECT_TRUE(collection.isJailbroken());
    EXPECT_EQ(second->questions, 1);
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, AVerdictByTypeAsksThatDetectorDirectly) {
    ZRMDeviceJailbreakDetectorCollection collection({first, second, third}, true);
    EXPECT_TRUE(collection.isJailbrokenByType(ZRMDeviceJailbreakDetectorSysCalls));
    third->answer = false;
    EXPECT_FALSE(collection.isJailbrokenByType(ZRMDeviceJailbreakDetectorSysCalls));
    EXPECT_EQ(first->questions, 0);
    EXPECT_EQ(third->questions, 2);
}

TEST_F(ZRMDeviceJailbreakDetectorCollectionTest, AVerdictOfATypeThatIsMissingIsFalse) {
    ZRMDeviceJailbreakDetectorCollection collection({first, second, third}, false);
    EXPECT_FALSE(collection.isJailbrokenByType(ZRMDeviceJailbreakDetectorDyldImages));
    EXPECT_EQ(first->questions + second->questions + third->questions, 0);
}
