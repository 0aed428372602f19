#include <cmath>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

namespace {

ZRMData bytesOf(const std::string& text) {
    return zrm_dataFromText(text);
}

// A binary list in which each of `levels` arrays holds the next one twice.
ZRMData doublingList(std::uint8_t levels) {
    ZRMData bytes = zrm_dataFromText("bplist00");
    std::vector<std::uint8_t> offsets;
    for (std::uint8_t level = 0; level < levels; ++level) {
        offsets.push_back(static_cast<std::uint8_t>(bytes.size()));
        const auto next = static_cast<std::uint8_t>(level + 1);
        bytes.insert(bytes.end(), {0xA2, next, next});
    }
    offsets.push_back(static_cast<std::uint8_t>(bytes.size()));
    bytes.push_back(0x09);  // true
    const auto table = bytes.size();
    bytes.insert(bytes.end(), offsets.begin(), offsets.end());
    ZRMData trailer(32);
    trailer[6] = 1;
    trailer[7] = 1;
    trailer[15] = static_cast<std::uint8_t>(offsets.size());
    trailer[31] = static_cast<std::uint8_t>(table);
    bytes.insert(bytes.end(), trailer.begin(), trailer.end());
    return bytes;
}

}  // namespace

TEST(ZRMLinuxPropertyList, BothFormsAreRead) {
    const ZRMLinuxPropertyList list(plist_new_dict());
    plist_dict_set_item(list.get(), "text", plist_new_string("value"));
    for (const auto& bytes :
         {zrm_writeXmlPropertyList(list.get()), zrm_writeBinaryPropertyList(list.get())}) {
        const auto read = zrm_readPropertyList(bytes);
        ASSERT_TRUE(read);
        EXPECT_EQ(zrm_propertyListString(zrm_propertyListEntry(read.get(), "text")), "value");
    }
}

TEST(ZRMLinuxPropertyList, ValuesAreOfOneTypeOnly) {
    const ZRMLinuxPropertyList real(plist_new_real(1));
    EXPECT_EQ(zrm_propertyListReal(real.get()), 1.0);
    EXPECT_EQ(zrm_propertyListInteger(real.get()), std::nullopt);
    EXPECT_EQ(zrm_propertyListString(real.get()), std::nullopt);
    EXPECT_EQ(zrm_propertyListData(real.get()), std::nullopt);
    EXPECT_EQ(zrm_propertyListBoolean(real.get()), std::nullopt);
    EXPECT_EQ(zrm_propertyListText(real.get()), std::nullopt);
    EXPECT_EQ(zrm_propertyListEntry(real.get(), "key"), nullptr);
    EXPECT_EQ(zrm_propertyListReal(nullptr), std::nullopt);
    const ZRMLinuxPropertyList integer(plist_new_uint(static_cast<std::uint64_t>(-5)));
    EXPECT_EQ(zrm_propertyListInteger(integer.get()), -5);
    EXPECT_EQ(zrm_propertyListReal(integer.get()), std::nullopt);
}

TEST(ZRMLinuxPropertyList, TextOfAnyBytesComesBackInBothForms) {
    for (const auto& text :
         {std::string("plain <&> text"), std::string(), std::string("a\0b", 3),
          std::string("\xff\xfe"), std::string("gr\xc3\xbc\xc3\x9f"), std::string(" \r\n\t")}) {
        const ZRMLinuxPropertyList list(plist_new_dict());
        plist_dict_set_item(list.get(), "t", zrm_newPropertyListText(text));
        for (const auto& bytes :
             {zrm_writeXmlPropertyList(list.get()), zrm_writeBinaryPropertyList(list.get())}) {
            const auto read = zrm_readPropertyList(bytes);
            EXPECT_EQ(zrm_propertyListText(zrm_propertyListEntry(read.get(), "t")), text);
        }
    }
}

TEST(ZRMLinuxPropertyList, GarbageIsNoList) {
    for (const char* text :
         {"", "x", "bplist", "bplist00", "<plist>", "<plist><dict>", "{}", "<?xml"}) {
        EXPECT_FALSE(zrm_readPropertyList(bytesOf(text))) << text;
    }
    EXPECT_FALSE(zrm_readPropertyList(ZRMData(100, 0)));
    EXPECT_FALSE(zrm_readPropertyList(ZRMData(100, 0xff)));
}

TEST(ZRMLinuxPropertyList, ACutBinaryListIsNoneAtEveryLength) {
    const ZRMLinuxPropertyList list(plist_new_dict());
    plist_dict_set_item(list.get(), "text", plist_new_string("value"));
    const auto bytes = zrm_writeBinaryPropertyList(list.get());
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(zrm_readPropertyList(std::span(bytes).first(length))) << length;
    }
}

TEST(ZRMLinuxPropertyList, EveryChangedByteIsSurvived) {
    const ZRMLinuxPropertyList list(plist_new_dict());
    plist_t array = plist_new_array();
    plist_array_append_item(array, plist_new_real(1.5));
    plist_array_append_item(array, plist_new_data("data", 4));
    plist_dict_set_item(list.get(), "array", array);
    const auto bytes = zrm_writeBinaryPropertyList(list.get());
    int read = 0;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        for (const std::uint8_t value : ZRMData{0x00, 0x01, 0x7f, 0x80, 0xaf, 0xdf, 0xff}) {
            auto changed = bytes;
            changed[place] = value;
            read += zrm_readPropertyList(changed) ? 1 : 0;
        }
    }
    EXPECT_GT(read, 0);
}

TEST(ZRMLinuxPropertyList, SharingThatWouldMultiplyIsRefused) {
    EXPECT_TRUE(zrm_readPropertyList(doublingList(3)));
    EXPECT_FALSE(zrm_isBoundedPropertyList(doublingList(30)));
    EXPECT_FALSE(zrm_readPropertyList(doublingList(30)));
}

TEST(ZRMLinuxPropertyList, AListThatHoldsItselfIsRefused) {
    auto bytes = doublingList(1);
    bytes[9] = 0;
    bytes[10] = 0;
    EXPECT_FALSE(zrm_readPropertyList(bytes));
}

TEST(ZRMLinuxPropertyList, ATextWhoseLengthLiesPastTheEndIsRefused) {
    constexpr std::uint8_t kTable = 0x5F;  // in the last byte, where it reads as a text, too
    ZRMData bytes = bytesOf("bplist00");
    bytes.resize(kTable);
    constexpr std::size_t kTrailer = 32;
    bytes.push_back(kTable + kTrailer);  // where the one object lies
    bytes.resize(bytes.size() + kTrailer);
    auto* const trailer = bytes.data() + bytes.size() - kTrailer;
    trailer[6] = 1;
    trailer[7] = 1;
    trailer[15] = 1;
    trailer[31] = kTable;
    EXPECT_FALSE(zrm_readPropertyList(bytes));
}

TEST(ZRMLinuxPropertyList, DeepNestingAndGreatSizeAreRefused) {
    std::string deep;
    for (int level = 0; level < 100'000; ++level) {
        deep += "<array>";
    }
    EXPECT_FALSE(zrm_readPropertyList(bytesOf("<plist version=\"1.0\">" + deep)));
    EXPECT_FALSE(zrm_isBoundedPropertyList(ZRMData(4U * 1024 * 1024 + 1, ' ')));
}
