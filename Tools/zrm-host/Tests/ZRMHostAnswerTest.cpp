#include <gtest/gtest.h>

#include "Tools/zrm-host/ZRMHostAnswer.h"

namespace {

TEST(ZRMHostAnswer, PrintsSuccessWithANullError) {
    EXPECT_EQ((ZRMHostAnswer{"login", {}, {}}.line()), R"({"op":"login","error":null})");
}

TEST(ZRMHostAnswer, PrintsDomainCodeAndMessageOfAnError) {
    const ZRMHostAnswer answer{
        "login",
        ZRMError::withDescription("com.velorin.zrm.mobilekit", 12, "Event is \"disabled\""),
        {}};
    EXPECT_EQ(answer.line(),
              R"({"op":"login","error":{"domain":"com.velorin.zrm.mobilekit","code":12,)"
              R"("message":"Event is \"disabled\""}})");
}

TEST(ZRMHostAnswer, AddsAValueWhereThereIsOne) {
    EXPECT_EQ((ZRMHostAnswer{"drain", {}, boost::json::value(3)}.line()),
              R"({"op":"drain","error":null,"value":3})");
    EXPECT_EQ((ZRMHostAnswer{"tag", {}, boost::json::value(nullptr)}.line()),
              R"({"op":"tag","error":null,"value":null})");
}

TEST(ZRMHostAnswer, StaysOneLineOfJsonWhateverTheCommandIsCalled) {
    EXPECT_EQ((ZRMHostAnswer{"a\n\xff\"", {}, {}}.line()), R"({"op":"a??\"","error":null})");
}

}  // namespace
