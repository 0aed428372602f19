#include <limits>

#include <gmock/gmock.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ZRMStatisticsBodyMakerTest : public ZRMStatisticsDeviceTest {
  protected:
    ZRMStatisticsBodyMaker::Steps steps_ = ZRMStatisticsBodyMaker::Steps::standard();
    const ZRMDictionary parameters_{{"LOGIN", {{"user", "alice"}}}};

    [[nodiscard]] ZRMSharedData body() const {
        return ZRMStatisticsBodyMaker(steps_).bodyWithParameters(parameters_);
    }
};

ZRMError someError() {
    return ZRMError::withDescription("Some", 1, "no way");
}

}  // namespace

// The worked example of docs/formats/upload-body.md.
TEST_F(ZRMStatisticsBodyMakerTest, WrapsTheParametersInAnUnsignedJwsObject) {
    const auto jws = ZRMStatisticsBodyMaker().jwsDataWithParameters(parameters_);
    ASSERT_TRUE(jws.has_value());
    EXPECT_EQ(
        zrm_textFromData(*jws),
        R"({"payload":"eyJhcnJheSI6W3siTE9HSU4iOnsidXNlciI6ImFsaWNlIn19XX0","signatures":[]})");
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ZRMStatisticsBodyMakerTest, PayloadDecodesToAOneElementArrayOfTheParameters) {
    const auto decoded = zrm_dataFromBase64String(
        zrm_base64FromBase64UrlString("eyJhcnJheSI6W3siTE9HSU4iOnsidXNlciI6ImFsaWNlIn19XX0"));
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(zrm_textFromData(*decoded), R"({"array":[{"LOGIN":{"user":"alice"}}]})");
}

TEST_F(ZRMStatisticsBodyMakerTest, BodyIsTheGzipOfTheJwsObject) {
    const auto compressed = body();
    ASSERT_TRUE(compressed);
    EXPECT_TRUE(zrm_isGzipData(*compressed));
    EXPECT_EQ(zrm_ungzipData(*compressed),
              *ZRMStatisticsBodyMaker().jwsDataWithParameters(parameters_));
}

TEST_F(ZRMStatisticsBodyMakerTest, EmptyParametersAreAnEventToo) {
    const auto jws = ZRMStatisticsBodyMaker().jwsDataWithParameters({});
    ASSERT_TRUE(jws.has_value());
    EXPECT_EQ(zrm_textFromData(*jws), R"({"payload":"eyJhcnJheSI6W3t9XX0","signatures":[]})");
}

TEST_F(ZRMStatisticsBodyMakerTest, NumberThatJsonCannotHoldIsAnInvalidObject) {
    const ZRMDictionary parameters{{"x", std::numeric_limits<double>::infinity()}};
    EXPECT_FALSE(ZRMStatisticsBodyMaker().bodyWithParameters(parameters));
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], StartsWith("Invalid JSON object: {\"x\":"));
}

TEST_F(ZRMStatisticsBodyMakerTest, TextThatIsNotUtf8IsAnInvalidObjectAndDoesNotBreakTheLog) {
    const ZRMDictionary parameters{{"x", "a\xff"}};
    EXPECT_FALSE(ZRMStatisticsBodyMaker().bodyWithParameters(parameters));
    EXPECT_THAT(errors(), ElementsAre("Invalid JSON object: {\"x\":\"a\xEF\xBF\xBD\"}"));
}

TEST_F(ZRMStatisticsBodyMakerTest, FailureToWriteThePayloadIsLogged) {
    steps_.compactJson = [](const ZRMDictionary&) -> ZRMResult<ZRMData> { return someError(); };
    EXPECT_FALSE(body());
    EXPECT_THAT(errors(), ElementsAre("no way"));
}

TEST_F(ZRMStatisticsBodyMakerTest, PayloadThatIsNoTextIsLogged) {
    steps_.utf8Text = [](const ZRMData&) { return std::optional<std::string>(); };
    EXPECT_FALSE(body());
    EXPECT_THAT(errors(), ElementsAre("Invalid transform binary data to string for json: "
                                      R"({"array":[{"LOGIN":{"user":"alice"}}]})"));
}

TEST_F(ZRMStatisticsBodyMakerTest, PayloadThatCannotBeSignedIsLoggedWithTheAlgorithm) {
    steps_.signedJson = [](const std::string&) { return std::optional<ZRMDictionary>(); };
    EXPECT_FALSE(body());
    EXPECT_THAT(errors(),
                ElementsAre("Can't sign payload: {\"array\":[{\"LOGIN\":{\"user\":\"alice\"}}]}\n"
                            "Algorithm: None"));
}

TEST_F(ZRMStatisticsBodyMakerTest, FailureToWriteTheJwsObjectIsLogged) {
    int calls = 0;
    steps_.compactJson = [&calls](const ZRMDictionary&) -> ZRMResult<ZRMData> {
        return ++calls == 1 ? ZRMResult<ZRMData>(ZRMData{'{', '}'}) : someError();
    };
    EXPECT_FALSE(body());
    EXPECT_EQ(calls, 2);
    EXPECT_THAT(errors(), ElementsAre("no way"));
}

TEST_F(ZRMStatisticsBodyMakerTest, FailureToCompressIsLoggedWithTwoBlanks) {
    steps_.gzip = [](std::span<const std::uint8_t>) { return ZRMData(); };
    EXPECT_FALSE(body());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], StartsWith("Can't gzip data:  7b227061796c6f6164223a"));
}
