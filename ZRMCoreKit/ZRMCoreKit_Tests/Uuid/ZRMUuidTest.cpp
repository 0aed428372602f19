#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

namespace {

class SameRandom final : public ZRMRandom {
  public:
    explicit SameRandom(std::uint8_t byte) : byte_(byte) {}
    void fill(std::span<std::uint8_t> bytes) override { std::ranges::fill(bytes, byte_); }

  private:
    std::uint8_t byte_;
};

}  // namespace

TEST(ZRMUuid, IsUpperCaseHyphenatedAndOfVersion4) {
    SameRandom ones(0xFF);
    EXPECT_EQ(zrm_makeUuidText(ones), "FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF");
    SameRandom zeros(0x00);
    EXPECT_EQ(zrm_makeUuidText(zeros), "00000000-0000-4000-8000-000000000000");
    SameRandom mixed(0xA5);
    EXPECT_EQ(zrm_makeUuidText(mixed), "A5A5A5A5-A5A5-45A5-A5A5-A5A5A5A5A5A5");
}
