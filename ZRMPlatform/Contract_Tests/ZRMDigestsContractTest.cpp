// What ZRMDigests.h promises.
#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMDigestsContract : public ZRMContract {
  protected:
    std::string digest(ZRMDigestAlgorithm algorithm, const std::vector<std::string>& pieces) {
        const auto context = platform()->digests->makeContext(algorithm);
        if (!context) {
            return "no context";
        }
        for (const auto& piece : pieces) {
            context->update(zrm_dataFromText(piece));
        }
        const auto bytes = context->finish();
        if (!bytes) {
            return "no digest";
        }
        std::string hex;
        for (const auto byte : *bytes) {
            constexpr std::string_view kDigits = "0123456789abcdef";
            hex += kDigits[byte >> 4];
            hex += kDigits[byte & 0xf];
        }
        return hex;
    }
};

// RFC 1321, FIPS 180.
constexpr const char* kMd5OfAbc = "900150983cd24fb0d6963f7d28e17f72";
constexpr const char* kSha1OfAbc = "a9993e364706816aba3e25717850c26c9cd0d89d";
constexpr const char* kSha256OfAbc =
    "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

}  // namespace

TEST_P(ZRMDigestsContract, ComputesTheKnownDigests) {
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Md5, {"abc"}), kMd5OfAbc);
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha1, {"abc"}), kSha1OfAbc);
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha256, {"abc"}), kSha256OfAbc);
}

TEST_P(ZRMDigestsContract, DigestsNothing) {
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Md5, {}), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha256, {""}),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_P(ZRMDigestsContract, PiecesMakeUpTheWhole) {
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Md5, {"a", "", "bc"}), kMd5OfAbc);
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha1, {"a", "b", "c"}), kSha1OfAbc);
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha256, {"ab", "c"}), kSha256OfAbc);
}

TEST_P(ZRMDigestsContract, ContextsDoNotDisturbEachOther) {
    const auto first = platform()->digests->makeContext(ZRMDigestAlgorithm::Sha256);
    const auto second = platform()->digests->makeContext(ZRMDigestAlgorithm::Sha256);
    first->update(zrm_dataFromText("a"));
    second->update(zrm_dataFromText("b"));
    first->update(zrm_dataFromText("c"));
    const auto firstDigest = first->finish();
    EXPECT_NE(firstDigest, second->finish());
    ASSERT_TRUE(firstDigest);
    EXPECT_EQ(firstDigest->size(), 32u);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMDigestsContract, zrm_contractBodies(), zrm_contractBodyName);
