#include <limits>

#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintHashes.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintTexts.h"
#include "ZRMGenerated/ZRMFingerprintBuildSettings.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDigests.h"

namespace {

constexpr const char* kHashOf192_168_1_20 =
    "b71597436e1f181c0dae41bfaf270cd3253f53d5d181539902f4b246169663b9";
constexpr const char* kHashOfA45e60010203 =
    "267ffdcf36f5216b47efa30507be0d4d2e8ba0046ca191b92a023e4c84a17b35";

class ZRMFingerprintHashes : public testing::Test {
  protected:
    ZRMSimulatedDigests digests_;
};

TEST_F(ZRMFingerprintHashes, TellAnAddressByItsDigestAndItsFirstThreeBytes) {
    const ZRMData address{192, 168, 1, 20};
    EXPECT_EQ(zrm_fingerprintAddress(digests_, address),
              (ZRMFingerprintAddress{kHashOf192_168_1_20, 108736}));
}

TEST_F(ZRMFingerprintHashes, PutTheFirstByteLowestAndLeaveTheHighestEmpty) {
    const ZRMData address{0x01, 0x02, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(zrm_fingerprintAddress(digests_, address).firstThree, 0x00FF0201U);
}

TEST_F(ZRMFingerprintHashes, TellNothingOfFewerThanFourBytes) {
    const ZRMData bytes{192, 168, 1, 20};
    for (std::size_t length = 0; length < 4; ++length) {
        EXPECT_EQ(zrm_fingerprintAddress(digests_, std::span(bytes).first(length)),
                  ZRMFingerprintAddress())
            << length;
    }
}

TEST_F(ZRMFingerprintHashes, TellTheFirstThreeBytesEvenWithoutADigest) {
    digests_.setAvailable(ZRMDigestAlgorithm::Sha256, false);
    const ZRMData address{192, 168, 1, 20};
    EXPECT_EQ(zrm_fingerprintAddress(digests_, address), (ZRMFingerprintAddress{"", 108736}));
}

TEST_F(ZRMFingerprintHashes, TakeTheDigitsOfAMacAddressAsLowerCaseText) {
    const ZRMFingerprintAddress expected{kHashOfA45e60010203, 3486817};
    for (const auto* text : {"a4:5e:60:01:02:03", "A4:5E:60:01:02:03", "A45E60010203",
                             "a4-5E-60-01-02-03", " gA4:5e:60z:01\xC3\xBC:02:03\xFF\n"}) {
        EXPECT_EQ(zrm_fingerprintMacAddress(digests_, text), expected) << text;
    }
}

TEST_F(ZRMFingerprintHashes, TellNothingOfAMacAddressThatIsAbsentOrTooShort) {
    for (const std::optional<std::string>& text :
         {std::optional<std::string>(), std::optional<std::string>(""),
          std::optional<std::string>("a4:5"), std::optional<std::string>("xyz:ghi:jkl")}) {
        EXPECT_EQ(zrm_fingerprintMacAddress(digests_, text), ZRMFingerprintAddress())
            << text.value_or("absent");
    }
}

TEST_F(ZRMFingerprintHashes, TakeTheAccessPointsAddressAsItStands) {
    EXPECT_EQ(zrm_fingerprintBssidHash(digests_, "a4:5e:60:01:02:03"),
              "c2cf8d9d99817cc809e3706d3a61cd16a3a0e8c133d52625b40b0ee7f73348f5");
    EXPECT_NE(zrm_fingerprintBssidHash(digests_, "A4:5E:60:01:02:03"),
              zrm_fingerprintBssidHash(digests_, "a4:5e:60:01:02:03"));
    EXPECT_EQ(zrm_fingerprintBssidHash(digests_, std::nullopt), "");
    EXPECT_EQ(zrm_fingerprintBssidHash(digests_, ""), "");
}

TEST_F(ZRMFingerprintHashes, AreEmptyWhenTheDigestFails) {
    digests_.setFinishFails(true);
    EXPECT_EQ(zrm_fingerprintHash(digests_, ZRMData{1}), "");
    EXPECT_EQ(zrm_fingerprintBssidHash(digests_, "a4:5e:60:01:02:03"), "");
}

// The name that a server with the same key reads back.
std::string unveiled(const std::string& hex) {
    std::string name;
    for (std::size_t index = 0; 2 * index < hex.size(); ++index) {
        const auto byte = std::stoi(hex.substr(2 * index, 2), nullptr, 16);
        const auto& key = kZRMFingerprintStatisticDeviceNameXorKey;
        name += static_cast<char>(byte ^ key.at(index % key.size()));
    }
    return name;
}

TEST(ZRMFingerprintDeviceName, IsVeiledWithAKeyOfEightBytesThatRepeats) {
    static_assert(kZRMFingerprintStatisticDeviceNameXorKey.size() == 8);
    for (const std::string name :
         {"A", "8 bytes!", "Ada's phone", "Ünsal’ın telefonu", "銀行のスマホ", "\xFF\x80 no UTF-8",
          "a name that is longer than two turns of the key"}) {
        const auto hex = zrm_fingerprintDeviceNameXor(name);
        EXPECT_EQ(hex.size(), 2 * name.size());
        EXPECT_EQ(hex.find_first_not_of("0123456789abcdef"), std::string::npos) << hex;
        EXPECT_EQ(unveiled(hex), name);
    }
}

TEST(ZRMFingerprintDeviceName, IsTheKeyItselfForZerosAndEmptyForNoName) {
    const auto once = zrm_fingerprintDeviceNameXor(std::string(8, '\0'));
    EXPECT_EQ(zrm_fingerprintDeviceNameXor(std::string(16, '\0')), once + once);
    EXPECT_EQ(unveiled(once), std::string(8, '\0'));
    EXPECT_EQ(zrm_fingerprintDeviceNameXor(""), "");
}

TEST(ZRMFingerprintSeconds, AreWrittenInTheFewestDigitsThatReadBackAndWithoutAnExponent) {
    EXPECT_EQ(zrm_fingerprintSecondsText({1767225661.5}), "1767225661.5");
    EXPECT_EQ(zrm_fingerprintSecondsText({1767225661}), "1767225661");
    EXPECT_EQ(zrm_fingerprintSecondsText({1700000000}), "1700000000");
    EXPECT_EQ(zrm_fingerprintSecondsText({1700000000.123}), "1700000000.123");
    EXPECT_EQ(zrm_fingerprintSecondsText({0}), "0");
    EXPECT_EQ(zrm_fingerprintSecondsText({-0.1}), "-0.1");
    EXPECT_EQ(zrm_fingerprintSecondsText({1e22}), "10000000000000000000000");
}

TEST(ZRMFingerprintSeconds, AreWrittenForEveryFiniteDateAndEmptyForOthers) {
    using Limits = std::numeric_limits<double>;
    for (const double seconds : {Limits::max(), Limits::lowest(), Limits::min(),
                                 -Limits::denorm_min(), -2.2250738585072011e-308}) {
        const auto text = zrm_fingerprintSecondsText({seconds});
        EXPECT_EQ(text.find_first_not_of("-.0123456789"), std::string::npos);
        EXPECT_EQ(std::strtod(text.c_str(), nullptr), seconds);
    }
    EXPECT_EQ(zrm_fingerprintSecondsText({Limits::infinity()}), "");
    EXPECT_EQ(zrm_fingerprintSecondsText({Limits::quiet_NaN()}), "");
}

TEST(ZRMFingerprintVersion, HasThreeNumbers) {
    EXPECT_EQ(zrm_fingerprintVersionText({17, 1, 2}), "17.1.2");
    EXPECT_EQ(zrm_fingerprintVersionText({}), "0.0.0");
}

}  // namespace
