#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsRequest.h"

namespace {

using ::testing::ElementsAre;
using Field = ZRMHttpHeaders::Field;

ZRMSharedData body() {
    return std::make_shared<const ZRMData>(ZRMData{1, 2, 3});
}

constexpr const char* kUrl = "https://risk.example.com/stat";

}  // namespace

TEST(ZRMStatisticsRequest, PostsTheBytesToTheAddress) {
    const auto request = zrm_statisticsRequest(kUrl, body(), 0, {});
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, kUrl);
    EXPECT_EQ(*request.body, (ZRMData{1, 2, 3}));
}

TEST(ZRMStatisticsRequest, HasTheFixedHeadersInTheirOrder) {
    const auto request = zrm_statisticsRequest(kUrl, body(), 0, {});
    EXPECT_THAT(request.headers.fields(),
                ElementsAre(Field("Content-Type", "application/jose+json"),
                            Field("Content-Encoding", "gzip"), Field("Content-Length", "3")));
}

TEST(ZRMStatisticsRequest, TellsTheServersTimeOnceItIsKnown) {
    const auto request = zrm_statisticsRequest(kUrl, body(), 1700000000123, {});
    ASSERT_NE(request.headers.find("Request-Server-Timestamp"), nullptr);
    EXPECT_EQ(*request.headers.find("Request-Server-Timestamp"), "1700000000123");
}

TEST(ZRMStatisticsRequest, CustomHeadersComeLastAndReplaceTheFixedOnes) {
    const auto request = zrm_statisticsRequest(kUrl, body(), 5,
                                               {{"Content-Type", "text/plain"},
                                                {"Mobile-UUID", "tag"},
                                                {"Request-Server-Timestamp", "6"}});
    EXPECT_THAT(request.headers.fields(),
                ElementsAre(Field("Content-Type", "text/plain"), Field("Content-Encoding", "gzip"),
                            Field("Content-Length", "3"), Field("Request-Server-Timestamp", "6"),
                            Field("Mobile-UUID", "tag")));
}

TEST(ZRMStatisticsRequest, CustomHeaderMayBeEmpty) {
    const auto request = zrm_statisticsRequest(kUrl, body(), 0, {{"Mobile-UUID", ""}});
    ASSERT_NE(request.headers.find("Mobile-UUID"), nullptr);
    EXPECT_EQ(*request.headers.find("Mobile-UUID"), "");
}
