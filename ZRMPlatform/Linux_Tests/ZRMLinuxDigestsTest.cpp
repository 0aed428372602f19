#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxDigests.h"

namespace {

std::string hex(const std::optional<ZRMData>& bytes) {
    std::string text;
    for (const auto byte : bytes.value_or(ZRMData())) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        text += {kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
    return text;
}

std::string digest(ZRMDigestAlgorithm algorithm, const std::vector<std::string>& pieces) {
    const auto context = ZRMLinuxDigests().makeContext(algorithm);
    for (const auto& piece : pieces) {
        context->update(zrm_dataFromText(piece));
    }
    return hex(context->finish());
}

}  // namespace

// Published vectors: RFC 1321 and FIPS 180.
TEST(ZRMLinuxDigests, GivesThePublishedDigests) {
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Md5, {}), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Md5, {"abc"}), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha1, {"abc"}),
              "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha256, {"abc"}),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(ZRMLinuxDigests, PiecesMakeTheSameDigestAsTheWhole) {
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha256, {"a", "", "b", "c"}),
              digest(ZRMDigestAlgorithm::Sha256, {"abc"}));
    EXPECT_EQ(digest(ZRMDigestAlgorithm::Sha1, {std::string(1000, 'x'), std::string(1000, 'y')}),
              digest(ZRMDigestAlgorithm::Sha1, {std::string(1000, 'x') + std::string(1000, 'y')}));
}

TEST(ZRMLinuxDigests, ASecondFinishIsAbsent) {
    const auto context = ZRMLinuxDigests().makeContext(ZRMDigestAlgorithm::Sha256);
    EXPECT_TRUE(context->finish().has_value());
    EXPECT_FALSE(context->finish().has_value());
}
