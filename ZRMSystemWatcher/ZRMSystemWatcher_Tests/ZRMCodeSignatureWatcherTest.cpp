#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMCodeSignatureFixture.h"

using ZRMCodeSignatureWatcherTest = ZRMCodeSignatureFixture;

namespace {

ZRMData codeOf(const ZRMSignedImage& image) {
    return {image.bytes.begin(), image.bytes.begin() + image.signatureOffset};
}

}  // namespace

TEST_F(ZRMCodeSignatureWatcherTest, GivesTheSha1DescriptorThenTheSha256One) {
    const auto descriptors = signatureOf(zrm_writeSignedImage({}).bytes);
    ASSERT_EQ(descriptors.size(), 2U);
    EXPECT_EQ(descriptors[0].hashType(), ZRMCodeSignatureHashType::Sha1);
    EXPECT_EQ(descriptors[1].hashType(), ZRMCodeSignatureHashType::Sha256);
}

TEST_F(ZRMCodeSignatureWatcherTest, HashesEveryPieceOfASha256Signature) {
    const auto image = zrm_writeSignedImage({});
    const auto descriptors = signatureOf(image.bytes);
    EXPECT_EQ(descriptors[1].codeDirectoryHash(), zrm_sha256Text(image.codeDirectories[0]));
    EXPECT_EQ(descriptors[1].requirementsHash(), zrm_sha256Text(image.requirements));
    EXPECT_EQ(descriptors[1].entitlementsHash(), zrm_sha256Text(image.entitlements));
    EXPECT_EQ(descriptors[1].slotHashes(), zrm_sha256Texts(zrm_pagesOf(codeOf(image), 4096)));
}

TEST_F(ZRMCodeSignatureWatcherTest, ASha256OnlySignatureLeavesTheSha1DescriptorItsSharedPieces) {
    const auto image = zrm_writeSignedImage({});
    const auto sha1 = signatureOf(image.bytes)[0];
    EXPECT_EQ(sha1.codeDirectoryHash(), std::nullopt);
    EXPECT_EQ(sha1.slotHashes(), std::nullopt);
    EXPECT_EQ(sha1.requirementsHash(), zrm_sha1Text(image.requirements));
    EXPECT_EQ(sha1.entitlementsHash(), zrm_sha1Text(image.entitlements));
}

TEST_F(ZRMCodeSignatureWatcherTest, BothCodeDirectoriesFillTheirOwnDescriptor) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.hashType = 1}, {.hashType = 2, .pageSizeExponent = 13}};
    const auto image = zrm_writeSignedImage(plan);
    const auto descriptors = signatureOf(image.bytes);
    EXPECT_EQ(descriptors[0].codeDirectoryHash(), zrm_sha1Text(image.codeDirectories[0]));
    EXPECT_EQ(descriptors[0].slotHashes()->size(), 3U);
    EXPECT_EQ(descriptors[0].slotHashes()->back(),
              zrm_sha1Text(zrm_pagesOf(codeOf(image), 4096).back()));
    EXPECT_EQ(descriptors[1].codeDirectoryHash(), zrm_sha256Text(image.codeDirectories[1]));
    EXPECT_EQ(descriptors[1].slotHashes(), zrm_sha256Texts(zrm_pagesOf(codeOf(image), 8192)));
}

TEST_F(ZRMCodeSignatureWatcherTest, ALaterCodeDirectoryOfTheSameTypeReplacesAnEarlierOne) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.pageSizeExponent = 12}, {.pageSizeExponent = 13}};
    const auto image = zrm_writeSignedImage(plan);
    EXPECT_EQ(signatureOf(image.bytes)[1].codeDirectoryHash(),
              zrm_sha256Text(image.codeDirectories[1]));
}

TEST_F(ZRMCodeSignatureWatcherTest, CodeDirectoriesOfHashTypes0And3And4AreIgnored) {
    for (const auto hashType : std::initializer_list<std::uint8_t>{0, 3, 4, 255}) {
        ZRMSignedImagePlan plan;
        plan.codeDirectories = {{.hashType = hashType}};
        for (const auto& descriptor : signatureOf(zrm_writeSignedImage(plan).bytes)) {
            EXPECT_EQ(descriptor.codeDirectoryHash(), std::nullopt) << int{hashType};
            EXPECT_EQ(descriptor.slotHashes(), std::nullopt) << int{hashType};
        }
    }
}

TEST_F(ZRMCodeSignatureWatcherTest, APageSizeOf0YieldsEmptyPages) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.pageSizeExponent = 0, .slotCount = 3}};
    const auto hashes = signatureOf(zrm_writeSignedImage(plan).bytes)[1].slotHashes();
    EXPECT_EQ(hashes, std::vector<std::string>(3, zrm_sha256Text({})));
}

TEST_F(ZRMCodeSignatureWatcherTest, APageWiderThanTheCodeHoldsAllOfIt) {
    for (const auto exponent : std::initializer_list<std::uint8_t>{32, 63, 64, 255}) {
        ZRMSignedImagePlan plan;
        plan.codeDirectories = {{.pageSizeExponent = exponent, .slotCount = 2}};
        const auto image = zrm_writeSignedImage(plan);
        const auto hashes = signatureOf(image.bytes)[1].slotHashes();
        const std::vector<std::string> expected{zrm_sha256Text(codeOf(image)), zrm_sha256Text({})};
        EXPECT_EQ(hashes, expected) << int{exponent};
    }
}

TEST_F(ZRMCodeSignatureWatcherTest, NoSlotsYieldNoHashes) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.slotCount = 0}};
    const auto sha256 = signatureOf(zrm_writeSignedImage(plan).bytes)[1];
    EXPECT_EQ(sha256.slotHashes(), std::nullopt);
    EXPECT_NE(sha256.codeDirectoryHash(), std::nullopt);
}

TEST_F(ZRMCodeSignatureWatcherTest, TheLastPageIsAsLongAsTheCodeLimitLeaves) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.codeLimit = 5000}};
    const auto image = zrm_writeSignedImage(plan);
    const ZRMData limited(image.bytes.begin(), image.bytes.begin() + 5000);
    EXPECT_EQ(signatureOf(image.bytes)[1].slotHashes(),
              zrm_sha256Texts(zrm_pagesOf(limited, 4096)));
}

TEST_F(ZRMCodeSignatureWatcherTest, MissingPiecesHaveNoHash) {
    ZRMSignedImagePlan plan;
    plan.requirements.reset();
    plan.entitlements.reset();
    plan.codeDirectories.clear();
    for (const auto& descriptor : signatureOf(zrm_writeSignedImage(plan).bytes)) {
        EXPECT_EQ(descriptor.requirementsHash(), std::nullopt);
        EXPECT_EQ(descriptor.entitlementsHash(), std::nullopt);
        EXPECT_EQ(descriptor.codeDirectoryHash(), std::nullopt);
        EXPECT_EQ(descriptor.infoPlistHash(), std::nullopt);
    }
}

TEST_F(ZRMCodeSignatureWatcherTest, BothWordSizesAndByteOrdersAreRead) {
    for (const bool is64Bit : {false, true}) {
        for (const bool isBigEndian : {false, true}) {
            ZRMSignedImagePlan plan;
            plan.is64Bit = is64Bit;
            plan.isBigEndian = isBigEndian;
            const auto image = zrm_writeSignedImage(plan);
            EXPECT_EQ(signatureOf(image.bytes)[1].codeDirectoryHash(),
                      zrm_sha256Text(image.codeDirectories[0]))
                << is64Bit << isBigEndian;
        }
    }
}

TEST_F(ZRMCodeSignatureWatcherTest, AnyOtherMagicIsReadAsThe32BitHeader) {
    ZRMSignedImagePlan plan;
    plan.is64Bit = false;
    plan.magic = 0x12345678;
    EXPECT_NE(signatureOf(zrm_writeSignedImage(plan).bytes)[1].codeDirectoryHash(), std::nullopt);
}

TEST_F(ZRMCodeSignatureWatcherTest, AnUnknownBlobIsNamedInTheVerboseLogAndPassedOver) {
    ZRMSignedImagePlan plan;
    plan.others = {{0xfade0b01, {1, 2, 3}}};
    const auto image = zrm_writeSignedImage(plan);
    EXPECT_NE(signatureOf(image.bytes)[1].entitlementsHash(), std::nullopt);
    EXPECT_TRUE(logsVerbose("LC_CODE_SIGNATURE unknown block with magic: 0xfade0b01\n"));
}

TEST_F(ZRMCodeSignatureWatcherTest, AWrongSuperBlobMagicLeavesThePiecesOut) {
    ZRMSignedImagePlan plan;
    plan.superBlobMagic = 0xfade0cc1;
    EXPECT_EQ(signatureOf(zrm_writeSignedImage(plan).bytes)[1].codeDirectoryHash(), std::nullopt);
}

TEST_F(ZRMCodeSignatureWatcherTest, TheProcessIsReadFromItsFirstMainExecutable) {
    const auto image = zrm_writeSignedImage({});
    ZRMSignedImagePlan library;
    library.fileType = 6;
    loader->load("/usr/lib/first.dylib", 0x1000, zrm_writeSignedImage(library).bytes);
    loader->load("/App/Main", 0x2000, image.bytes);
    EXPECT_EQ(watcher().codeSignature()[1].codeDirectoryHash(),
              zrm_sha256Text(image.codeDirectories[0]));
}

TEST_F(ZRMCodeSignatureWatcherTest, NoMainExecutableLeavesOnlyTheInfoPlist) {
    ZRMSignedImagePlan library;
    library.fileType = 6;
    loader->load("/usr/lib/only.dylib", 0x1000, zrm_writeSignedImage(library).bytes);
    EXPECT_FALSE(watcher().findExecutableHeader().has_value());
    EXPECT_EQ(watcher().codeSignature()[1].codeDirectoryHash(), std::nullopt);
}

TEST_F(ZRMCodeSignatureWatcherTest, WithoutASignatureCommandOnlyTheInfoPlistIsHashed) {
    const ZRMData plist{'<', 'p', '>'};
    const auto path = device.platform()->mainBundle->path();
    ASSERT_FALSE(device.platform()->fileManager->createDirectory(path));
    ASSERT_FALSE(device.platform()->fileManager->writeFileAtomically(path + "/Info.plist", plist));
    ZRMSignedImagePlan plan;
    plan.hasSignatureCommand = false;
    loader->load("/App/Main", 0x2000, zrm_writeSignedImage(plan).bytes);

    const auto descriptors = watcher().codeSignature();
    EXPECT_EQ(descriptors[0].infoPlistHash(), zrm_sha1Text(plist));
    EXPECT_EQ(descriptors[1].infoPlistHash(), zrm_sha256Text(plist));
    for (const auto& descriptor : descriptors) {
        EXPECT_EQ(descriptor.codeDirectoryHash(), std::nullopt);
        EXPECT_EQ(descriptor.entitlementsHash(), std::nullopt);
        EXPECT_EQ(descriptor.requirementsHash(), std::nullopt);
        EXPECT_EQ(descriptor.slotHashes(), std::nullopt);
    }
}

TEST_F(ZRMCodeSignatureWatcherTest, AnUnknownHashTypeHashesNothing) {
    const ZRMCodeSignatureDescriptor descriptor(device.platform()->digests,
                                                ZRMCodeSignatureHashType::Unknown, {});
    EXPECT_EQ(descriptor.hashStringForData(ZRMData{1}), std::nullopt);
    EXPECT_EQ(descriptor.hashStringForData(std::nullopt), std::nullopt);
}
