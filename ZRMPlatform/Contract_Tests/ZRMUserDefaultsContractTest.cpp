// What ZRMUserDefaults.h promises.
#include <limits>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMUserDefaultsContract : public ZRMContract {
  protected:
    std::unique_ptr<ZRMUserDefaultsSuite> open(const std::string& name = "com.example.suite") {
        return platform()->userDefaults->openSuite(name);
    }
};

}  // namespace

TEST_P(ZRMUserDefaultsContract, AMissingKeyReadsAsAbsent) {
    const auto suite = open();
    ASSERT_NE(suite, nullptr);
    EXPECT_FALSE(suite->doubleForKey("key"));
    EXPECT_FALSE(suite->stringForKey("key"));
}

TEST_P(ZRMUserDefaultsContract, ReadsWhatWasWritten) {
    const auto suite = open();
    suite->setDouble("number", 1767225600.25);
    suite->setString("text",
                     "Gr\xc3\xbc\xc3\x9f"
                     "e & <b>\n");
    EXPECT_EQ(suite->doubleForKey("number"), 1767225600.25);
    EXPECT_EQ(suite->stringForKey("text"),
              "Gr\xc3\xbc\xc3\x9f"
              "e & <b>\n");
}

TEST_P(ZRMUserDefaultsContract, AWholeNumberStaysADouble) {
    open()->setDouble("number", 5);
    EXPECT_EQ(open()->doubleForKey("number"), 5);
}

TEST_P(ZRMUserDefaultsContract, AValueOfAnotherTypeReadsAsAbsent) {
    const auto suite = open();
    suite->setDouble("number", 1);
    suite->setString("text", "2");
    EXPECT_FALSE(suite->stringForKey("number"));
    EXPECT_FALSE(suite->doubleForKey("text"));
}

TEST_P(ZRMUserDefaultsContract, ALaterWriteReplacesTheValueWhateverItsType) {
    const auto suite = open();
    suite->setDouble("key", 1);
    suite->setString("key", "two");
    EXPECT_FALSE(suite->doubleForKey("key"));
    EXPECT_EQ(suite->stringForKey("key"), "two");
}

TEST_P(ZRMUserDefaultsContract, AWriteIsSeenByEveryHandleOnTheSuite) {
    const auto early = open();
    open()->setString("key", "value");
    EXPECT_EQ(early->stringForKey("key"), "value");
    EXPECT_EQ(open()->stringForKey("key"), "value");
}

TEST_P(ZRMUserDefaultsContract, SuitesAreApart) {
    open("com.example.one")->setString("key", "one");
    open("com.example.two")->setString("key", "two");
    EXPECT_EQ(open("com.example.one")->stringForKey("key"), "one");
}

TEST_P(ZRMUserDefaultsContract, ValuesSurviveTheProcess) {
    open()->setString("text", "kept");
    open()->setDouble("number", 0.1);
    body_->restart();
    EXPECT_EQ(open()->stringForKey("text"), "kept");
    EXPECT_EQ(open()->doubleForKey("number"), 0.1);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMUserDefaultsContract, zrm_contractBodies(),
                         zrm_contractBodyName);
