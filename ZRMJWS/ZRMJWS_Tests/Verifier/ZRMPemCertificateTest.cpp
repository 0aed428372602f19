#include <gtest/gtest.h>

#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMPemCertificate.h"

namespace {

std::optional<ZRMData> read(const std::string& text) {
    return zrm_certificateFromPem(zrm_dataFromText(text));
}

const ZRMData kAbc = zrm_dataFromText("abc");

}  // namespace

TEST(ZRMPemCertificate, ReadsWhatStandsBetweenTheLines) {
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----\nYWJj\n-----END CERTIFICATE-----\n"), kAbc);
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----YWJj-----END CERTIFICATE-----"), kAbc);
}

TEST(ZRMPemCertificate, TakesLineBreaksOfEveryKindOut) {
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----\r\nYW\r\nJ\rj\n\n-----END CERTIFICATE-----"), kAbc);
}

TEST(ZRMPemCertificate, PassesOverWhatStandsAround) {
    EXPECT_EQ(read("subject=CN = root\n-----BEGIN CERTIFICATE-----\nYWJj\n"
                   "-----END CERTIFICATE-----\ntrailing"),
              kAbc);
}

TEST(ZRMPemCertificate, ReadsTheFirstOfSeveral) {
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----YWJj-----END CERTIFICATE-----\n"
                   "-----BEGIN CERTIFICATE-----eHl6-----END CERTIFICATE-----"),
              kAbc);
}

TEST(ZRMPemCertificate, IsAbsentWhereALineIsMissingOrAnotherLabelStands) {
    EXPECT_EQ(read(""), std::nullopt);
    EXPECT_EQ(read("YWJj"), std::nullopt);
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----\nYWJj\n"), std::nullopt);
    EXPECT_EQ(read("YWJj\n-----END CERTIFICATE-----"), std::nullopt);
    EXPECT_EQ(read("-----END CERTIFICATE-----YWJj-----BEGIN CERTIFICATE-----"), std::nullopt);
    EXPECT_EQ(read("-----BEGIN X509 CRL-----YWJj-----END X509 CRL-----"), std::nullopt);
    EXPECT_EQ(read("-----begin certificate-----YWJj-----end certificate-----"), std::nullopt);
}

TEST(ZRMPemCertificate, NeedsACharacterBetweenTheLines) {
    EXPECT_EQ(read("-----BEGIN CERTIFICATE----------END CERTIFICATE-----"), std::nullopt);
    // A line break alone is one, and nothing once it is gone.
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----\n-----END CERTIFICATE-----"), ZRMData());
}

TEST(ZRMPemCertificate, IsAbsentWhereTheContentIsNotStrictBase64) {
    for (const char* content : {"YW Jj", " YWJj", "YWJj ", "YWJ", "Y=WJ", "YW\tJj", "YW-_", "!"}) {
        EXPECT_EQ(read("-----BEGIN CERTIFICATE-----" + std::string(content) +
                       "-----END CERTIFICATE-----"),
                  std::nullopt)
            << content;
    }
    EXPECT_EQ(read("-----BEGIN CERTIFICATE-----YWJjZA==-----END CERTIFICATE-----"),
              zrm_dataFromText("abcd"));
}

TEST(ZRMPemCertificate, IsAbsentWhereTheBytesAreNoText) {
    auto bytes = zrm_dataFromText("-----BEGIN CERTIFICATE-----YWJj-----END CERTIFICATE-----");
    bytes.push_back(0xff);
    EXPECT_EQ(zrm_certificateFromPem(bytes), std::nullopt);
}

TEST(ZRMPemCertificate, LongTextWithoutAnEndIsReadInOneGo) {
    std::string text;
    for (int count = 0; count < 100'000; ++count) {
        text += "-----BEGIN CERTIFICATE-----";
    }
    EXPECT_EQ(read(text), std::nullopt);
}
