// Images that an attacker shaped: nothing is read outside the view, nothing runs for ever, and what
// does not hold is absent and told in the log.
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMUniversalFile.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMCodeSignatureFixture.h"

using ZRMHostileImageTest = ZRMCodeSignatureFixture;

namespace {

constexpr std::uint32_t kExtremes[] = {0,          1,          7,          8,         0x7fffffff,
                                       0x80000000, 0xfffffff8, 0xffffffff, 0x10000000};

void hashEverything(const std::vector<ZRMCodeSignatureDescriptor>& descriptors) {
    for (const auto& descriptor : descriptors) {
        static_cast<void>(descriptor.codeDirectoryHash());
        static_cast<void>(descriptor.entitlementsHash());
        static_cast<void>(descriptor.requirementsHash());
        static_cast<void>(descriptor.slotHashes());
    }
}

ZRMSignedImagePlan smallPlan() {
    ZRMSignedImagePlan plan;
    plan.codeSize = 96;
    plan.codeDirectories = {{.hashType = 1, .pageSizeExponent = 5}, {.pageSizeExponent = 5}};
    return plan;
}

}  // namespace

TEST_F(ZRMHostileImageTest, ACommandSizeOf0EndsTheWalkWithALogLine) {
    ZRMSignedImagePlan plan;
    plan.paddingCommandSize = 0;
    plan.commandCount = 0xffffffff;
    EXPECT_EQ(signatureOf(zrm_writeSignedImage(plan).bytes)[1].codeDirectoryHash(), std::nullopt);
    EXPECT_TRUE(logsError("Load command 0 has a size of 0"));
}

TEST_F(ZRMHostileImageTest, ACommandPastTheImageEndsTheWalkWithALogLine) {
    ZRMSignedImagePlan plan;
    plan.paddingCommandSize = 0xfffffff0;
    EXPECT_EQ(signatureOf(zrm_writeSignedImage(plan).bytes)[1].codeDirectoryHash(), std::nullopt);
    EXPECT_TRUE(logsError("Load command 1 lies past the image"));
}

TEST_F(ZRMHostileImageTest, ASignaturePastTheImageIsAbsentWithALogLine) {
    ZRMSignedImagePlan plan;
    plan.dataOffset = 0xfffffff0;
    EXPECT_EQ(signatureOf(zrm_writeSignedImage(plan).bytes)[1].codeDirectoryHash(), std::nullopt);
    EXPECT_TRUE(logsError("The code signature lies past the image"));
}

TEST_F(ZRMHostileImageTest, AnIndexOfEveryEntryCountEndsAtTheImage) {
    for (const auto count : kExtremes) {
        auto plan = smallPlan();
        plan.indexCount = count;
        hashEverything(signatureOf(zrm_writeSignedImage(plan).bytes));
    }
    EXPECT_TRUE(logsError("The code signature's index"));
}

TEST_F(ZRMHostileImageTest, ABlobLengthBelow8OrPastTheEndLeavesThePieceOutWithALogLine) {
    for (const std::uint32_t length : {0U, 7U, 0xffffffffU}) {
        auto image = zrm_writeSignedImage({});
        const auto requirements = image.signatureOffset + image.blobOffsets[1];
        zrm_putBig32(image.bytes, requirements + 4, length);
        const auto sha256 = signatureOf(image.bytes)[1];
        EXPECT_EQ(sha256.requirementsHash(), std::nullopt) << length;
        EXPECT_NE(sha256.entitlementsHash(), std::nullopt) << length;
        EXPECT_TRUE(logsError("has a length of " + std::to_string(length)));
    }
}

TEST_F(ZRMHostileImageTest, OverlappingBlobsAreEachReadWhereTheyLie) {
    auto image = zrm_writeSignedImage({});
    const auto offset = image.blobOffsets[1];
    zrm_putBig32(image.bytes, image.signatureOffset + 12 + 4,
                 offset);  // the code directory's entry
    const auto sha256 = signatureOf(image.bytes)[1];
    EXPECT_EQ(sha256.codeDirectoryHash(), std::nullopt);
    EXPECT_EQ(sha256.requirementsHash(), zrm_sha256Text(image.requirements));
}

TEST_F(ZRMHostileImageTest, MoreSlotsThanTheImageCanHoldAreAbsentWithALogLine) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.slotCount = 0xffffffff}};
    const auto sha256 = signatureOf(zrm_writeSignedImage(plan).bytes)[1];
    EXPECT_EQ(sha256.slotHashes(), std::nullopt);
    EXPECT_NE(sha256.codeDirectoryHash(), std::nullopt);
    EXPECT_TRUE(logsError("4294967295 slots are more than the image can hold"));
}

TEST_F(ZRMHostileImageTest, ACodeLimitPastTheImageLeavesTheSlotsOutWithALogLine) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories = {{.slotCount = 3, .codeLimit = 0xffffffff}};
    EXPECT_EQ(signatureOf(zrm_writeSignedImage(plan).bytes)[1].slotHashes(), std::nullopt);
    EXPECT_TRUE(logsError("limit of 4294967295 lies past the image"));
}

TEST_F(ZRMHostileImageTest, ACodeDirectoryTooShortForItsFieldsHasNoType) {
    auto image = zrm_writeSignedImage({});
    zrm_putBig32(image.bytes, image.signatureOffset + image.blobOffsets[0] + 4, 30);
    EXPECT_EQ(signatureOf(image.bytes)[1].codeDirectoryHash(), std::nullopt);
}

TEST_F(ZRMHostileImageTest, ACodeDirectoryThatEndsBehindItsTypeLeavesTheSlotsOutWithALogLine) {
    ZRMSignedImagePlan plan;
    plan.codeDirectories.clear();
    ZRMData content(30);
    content.back() = 2;  // the type, at offset 37 of the blob
    plan.others = {{0xfade0c02, content}};
    const auto sha256 = signatureOf(zrm_writeSignedImage(plan).bytes)[1];
    EXPECT_NE(sha256.codeDirectoryHash(), std::nullopt);
    EXPECT_EQ(sha256.slotHashes(), std::nullopt);
    EXPECT_TRUE(logsError("The code directory is too short for its fields"));
}

TEST_F(ZRMHostileImageTest, AMillionBrokenBlobsDoNotFillTheLog) {
    auto image = zrm_writeSignedImage({});
    zrm_putBig32(image.bytes, image.signatureOffset + 8, 1000000);
    image.bytes.resize(image.signatureOffset + 12);
    image.bytes.resize(image.bytes.size() + 8U * 1000000, 0xff);
    hashEverything(signatureOf(image.bytes));
    EXPECT_LT(log.messages().size(), 100U);
}

TEST_F(ZRMHostileImageTest, ImagesCutOffAnywhereAreRead) {
    const auto image = zrm_writeSignedImage(smallPlan());
    for (std::size_t length = 0; length < image.bytes.size(); ++length) {
        // A buffer of exactly that length, so that a read past it is seen.
        hashEverything(signatureOf(ZRMData(
            image.bytes.begin(), image.bytes.begin() + static_cast<std::ptrdiff_t>(length))));
    }
}

TEST_F(ZRMHostileImageTest, EveryBitOfHeadersAndBlobsMayBeFlipped) {
    const auto image = zrm_writeSignedImage(smallPlan());
    for (std::size_t place = 0; place < image.bytes.size(); ++place) {
        for (const auto mask : std::initializer_list<std::uint8_t>{0x01, 0x80, 0xff}) {
            auto bytes = image.bytes;
            bytes[place] ^= mask;
            const auto descriptors = signatureOf(bytes);
            ASSERT_EQ(descriptors.size(), 2U);
            hashEverything(descriptors);
        }
    }
}

TEST_F(ZRMHostileImageTest, EveryWordMayTakeEveryExtreme) {
    const auto image = zrm_writeSignedImage(smallPlan());
    for (std::size_t place = 0; place + 4 <= image.bytes.size(); place += 4) {
        for (const auto value : kExtremes) {
            auto bytes = image.bytes;
            zrm_putBig32(bytes, place, value);
            hashEverything(signatureOf(bytes));
        }
    }
}

TEST_F(ZRMHostileImageTest, AHeaderThatDoesNotFitIsNone) {
    for (std::size_t length = 0; length < 32; ++length) {
        auto bytes = zrm_writeSignedImage({}).bytes;
        bytes.resize(length);
        EXPECT_FALSE(ZRMExecutableHeader::fromImage(ZRMImageView(bytes)).has_value()) << length;
    }
}

TEST(ZRMUniversalFileTest, SlicesAreFoundInBothLayouts) {
    for (const bool wide : {false, true}) {
        ZRMData file(100, 0xab);
        zrm_putBig32(file, 0, wide ? 0xcafebabf : 0xcafebabe);
        zrm_putBig32(file, 4, 1);
        std::fill(file.begin() + 8, file.begin() + 40, std::uint8_t{0});
        zrm_putBig32(file, wide ? 20 : 16, 60);
        zrm_putBig32(file, wide ? 28 : 20, 40);
        const auto slices = zrm_slicesOfUniversalFile(ZRMImageView(file));
        ASSERT_TRUE(slices && slices->size() == 1) << wide;
        EXPECT_EQ((*slices)[0].offset, 60U);
        EXPECT_EQ((*slices)[0].image.size(), 40U);
    }
}

TEST(ZRMUniversalFileTest, SlicesOutsideTheFileAreLeftOut) {
    ZRMData file(28, 0);
    zrm_putBig32(file, 0, 0xcafebabe);
    zrm_putBig32(file, 4, 0xffffffff);
    zrm_putBig32(file, 16, 20);
    zrm_putBig32(file, 20, 9);
    const auto slices = zrm_slicesOfUniversalFile(ZRMImageView(file));
    ASSERT_TRUE(slices.has_value());
    EXPECT_TRUE(slices->empty());
}

TEST(ZRMUniversalFileTest, SlicesThatOverlapOneBeforeThemAreLeftOut) {
    struct Place {
        std::uint32_t offset;
        std::uint32_t size;
    };
    // Apart, the same again, over its beginning, over its end, inside it, around it, and beside it.
    constexpr Place kPlaces[] = {{200, 40}, {200, 40}, {190, 20}, {230, 20},
                                 {210, 10}, {190, 60}, {180, 20}, {240, 20}};
    ZRMData file(300, 0);
    zrm_putBig32(file, 0, 0xcafebabe);
    zrm_putBig32(file, 4, std::size(kPlaces));
    for (std::size_t index = 0; index < std::size(kPlaces); ++index) {
        zrm_putBig32(file, 8 + 20 * index + 8, kPlaces[index].offset);
        zrm_putBig32(file, 8 + 20 * index + 12, kPlaces[index].size);
    }
    const auto slices = zrm_slicesOfUniversalFile(ZRMImageView(file));
    ASSERT_TRUE(slices && slices->size() == 3);
    EXPECT_EQ((*slices)[0].offset, 200U);
    EXPECT_EQ((*slices)[1].offset, 180U);
    EXPECT_EQ((*slices)[2].offset, 240U);
}

TEST(ZRMUniversalFileTest, AThinExecutableIsNoUniversalFile) {
    EXPECT_FALSE(
        zrm_slicesOfUniversalFile(ZRMImageView(zrm_writeSignedImage({}).bytes)).has_value());
    EXPECT_FALSE(zrm_slicesOfUniversalFile(ZRMImageView(ZRMData{})).has_value());
}
