#include <cstdio>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tools/zrm-inspect/ZRMSignatureInspection.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMSignedImageWriter.h"

namespace {

struct ZRMSignatureInspectionTest : testing::Test {
    ZRMSimulatedDevice device;
    ZRMScopedPlatform installed{device};
    std::string path = testing::TempDir() + "/zrm-signature-" + std::to_string(getpid());
    std::string plistPath = path + ".plist";

    ~ZRMSignatureInspectionTest() override {
        std::remove(path.c_str());
        std::remove(plistPath.c_str());
    }

    static void write(const std::string& to, const ZRMData& bytes) {
        std::ofstream(to, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }

    [[nodiscard]] ZRMInspection inspect(const ZRMData& bytes, const std::string& plist = {}) const {
        write(path, bytes);
        return zrm_inspectSignature(path, plist);
    }
};

}  // namespace

TEST_F(ZRMSignatureInspectionTest, PrintsBothDescriptorsOfAThinFile) {
    const auto inspection = inspect(zrm_writeSignedImage({}).bytes);
    EXPECT_TRUE(inspection.isGood);
    const auto& slices = inspection.report.at("slices").as_array();
    ASSERT_EQ(slices.size(), 1U);
    EXPECT_EQ(slices[0].at("offset"), 0U);
    const auto& sha1 = slices[0].at("signatures").at(0);
    const auto& sha256 = slices[0].at("signatures").at(1);
    EXPECT_EQ(sha1.at("hashType"), 1U);
    EXPECT_TRUE(sha1.at("codeDirectoryHash").is_null());
    EXPECT_TRUE(sha1.at("slotsHash").is_null());
    EXPECT_EQ(sha1.at("entitlementsHash").as_string().size(), 40U);
    EXPECT_EQ(sha256.at("hashType"), 2U);
    EXPECT_EQ(sha256.at("codeDirectoryHash").as_string().size(), 64U);
    EXPECT_EQ(sha256.at("slotsHash").as_array().size(), 3U);
    EXPECT_TRUE(sha256.at("infoPlistHash").is_null());
}

TEST_F(ZRMSignatureInspectionTest, HashesTheInfoPlistThatIsNamed) {
    write(plistPath, {'a', 'b', 'c'});
    const auto inspection = inspect(zrm_writeSignedImage({}).bytes, plistPath);
    EXPECT_EQ(inspection.report.at("slices").at(0).at("signatures").at(0).at("infoPlistHash"),
              "a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST_F(ZRMSignatureInspectionTest, PrintsEachSliceOfAUniversalFile) {
    const auto first = zrm_writeSignedImage({}).bytes;
    const auto second = zrm_writeSignedImage({.is64Bit = false, .isBigEndian = true}).bytes;
    ZRMData file(48, 0);
    zrm_putBig32(file, 0, 0xcafebabe);
    zrm_putBig32(file, 4, 2);
    const auto append = [&file](std::size_t entry, const ZRMData& image) {
        zrm_putBig32(file, entry + 8, static_cast<std::uint32_t>(file.size()));
        zrm_putBig32(file, entry + 12, static_cast<std::uint32_t>(image.size()));
        file.insert(file.end(), image.begin(), image.end());
    };
    append(8, first);
    append(28, second);
    const auto inspection = inspect(file);
    EXPECT_TRUE(inspection.isGood);
    const auto& slices = inspection.report.at("slices").as_array();
    ASSERT_EQ(slices.size(), 2U);
    EXPECT_EQ(slices[0].at("offset"), 48U);
    EXPECT_EQ(slices[1].at("offset"), 48U + first.size());
    EXPECT_TRUE(slices[1].at("signatures").at(1).at("codeDirectoryHash").is_string());
}

TEST_F(ZRMSignatureInspectionTest, AFileThatIsNoExecutableIsNotGood) {
    for (const ZRMData& bytes : {ZRMData{}, ZRMData(100, 'x'), ZRMData{0xca, 0xfe, 0xba, 0xbe}}) {
        const auto inspection = inspect(bytes);
        EXPECT_FALSE(inspection.isGood);
        EXPECT_EQ(inspection.report.at("error").at("code"), 5);
    }
}

TEST_F(ZRMSignatureInspectionTest, AMissingFileIsNotGood) {
    const auto inspection = zrm_inspectSignature(path + ".missing", "");
    EXPECT_FALSE(inspection.isGood);
    EXPECT_EQ(inspection.report.at("error").at("domain"), "NSPOSIXErrorDomain");
}
