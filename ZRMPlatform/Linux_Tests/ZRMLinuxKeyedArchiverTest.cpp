#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxKeyedArchiver.h"
#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

namespace {

ZRMArchiveObject roundTrip(const ZRMArchiveObject& object) {
    const ZRMLinuxKeyedArchiver archiver;
    const auto bytes = archiver.encode(object);
    EXPECT_TRUE(bytes);
    const auto decoded = archiver.decode(bytes.value());
    EXPECT_TRUE(decoded);
    return decoded.value();
}

ZRMArchiveObject with(ZRMArchiveValue value) {
    return {"Thing", {{"key", std::move(value)}}};
}

template <class Value>
void expectRoundTrip(const Value& value) {
    const auto decoded = roundTrip(with(value));
    ASSERT_TRUE(std::holds_alternative<Value>(decoded.fields.at("key")));
    EXPECT_EQ(std::get<Value>(decoded.fields.at("key")), value);
}

std::int64_t readingCode(const ZRMData& bytes) {
    const auto decoded = ZRMLinuxKeyedArchiver().decode(bytes);
    return decoded ? 0 : decoded.error().code();
}

// The archive of a string field, changed before it is written.
ZRMData tampered(const std::function<void(plist_t root, plist_t field)>& change) {
    const auto bytes = ZRMLinuxKeyedArchiver().encode(with(std::string("text"))).value();
    const auto list = zrm_readPropertyList(bytes);
    plist_t field = plist_array_get_item(zrm_propertyListEntry(list.get(), "fields"), 0);
    change(list.get(), field);
    return zrm_writeBinaryPropertyList(list.get());
}

std::shared_ptr<const ZRMArchiveObject> nested(int levels) {
    auto object = std::make_shared<const ZRMArchiveObject>(ZRMArchiveObject{"Leaf", {}});
    for (int level = 1; level < levels; ++level) {
        object =
            std::make_shared<const ZRMArchiveObject>(ZRMArchiveObject{"Node", {{"next", object}}});
    }
    return object;
}

}  // namespace

TEST(ZRMLinuxKeyedArchiver, EveryTypeComesBackAsItself) {
    expectRoundTrip(std::string("text"));
    expectRoundTrip(std::string());
    expectRoundTrip(std::string("\xc3\xa9\xf0\x9f\x98\x80"));
    expectRoundTrip(std::string("a\0b\xff", 4));
    expectRoundTrip(ZRMDate{1763690000.123456});
    expectRoundTrip(ZRMDate{-1.5});
    for (const double value :
         {0.0, 3.0, 0.1, -1e300, 5e-324, std::numeric_limits<double>::infinity()}) {
        expectRoundTrip(value);
    }
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        expectRoundTrip(value);
    }
    expectRoundTrip(true);
    expectRoundTrip(false);
    expectRoundTrip(ZRMData{0, 1, 2, 255});
    expectRoundTrip(ZRMData{});
}

TEST(ZRMLinuxKeyedArchiver, NotANumberStaysNotANumber) {
    const auto decoded = roundTrip(with(std::nan("")));
    EXPECT_TRUE(std::isnan(std::get<double>(decoded.fields.at("key"))));
}

TEST(ZRMLinuxKeyedArchiver, ObjectsNestWithTheirClassesAndKeys) {
    const auto inner = std::make_shared<const ZRMArchiveObject>(
        ZRMArchiveObject{"Inner\n\xc3\xa9", {{"k\xc3\xa9y", true}, {"", std::int64_t{4}}}});
    const auto decoded = roundTrip({"Outer", {{"inner", inner}, {"other", 1.5}}});
    EXPECT_EQ(decoded.className, "Outer");
    ASSERT_EQ(decoded.fields.size(), 2U);
    const auto& found =
        *std::get<std::shared_ptr<const ZRMArchiveObject>>(decoded.fields.at("inner"));
    EXPECT_EQ(found.className, "Inner\n\xc3\xa9");
    EXPECT_EQ(found.fields, inner->fields);
}

TEST(ZRMLinuxKeyedArchiver, AnObjectWithoutFieldsIsAnArchive) {
    EXPECT_TRUE(roundTrip({"Empty", {}}).fields.empty());
}

TEST(ZRMLinuxKeyedArchiver, ThirtyTwoLevelsPassAndOneMoreDoesNot) {
    EXPECT_TRUE(roundTrip(*nested(32)).fields.contains("next"));
    EXPECT_FALSE(ZRMLinuxKeyedArchiver().encode(*nested(33)));
}

TEST(ZRMLinuxKeyedArchiver, AnAbsentObjectCannotBeArchived) {
    const auto encoded =
        ZRMLinuxKeyedArchiver().encode(with(std::shared_ptr<const ZRMArchiveObject>()));
    ASSERT_FALSE(encoded);
    EXPECT_EQ(encoded.error().domain(), kZRMPosixErrorDomain);
    EXPECT_EQ(encoded.error().code(), EINVAL);
}

TEST(ZRMLinuxKeyedArchiver, WhatCouldNotBeReadBackIsNotArchived) {
    EXPECT_FALSE(ZRMLinuxKeyedArchiver().encode(with(ZRMData(5U * 1024 * 1024))));
}

TEST(ZRMLinuxKeyedArchiver, BytesThatAreNoArchiveAreAnError) {
    EXPECT_EQ(readingCode({}), EINVAL);
    EXPECT_EQ(readingCode(zrm_dataFromText("garbage")), EINVAL);
    EXPECT_EQ(readingCode(zrm_dataFromText("<plist version=\"1.0\"><string>x</string></plist>")),
              EINVAL);
    const auto bytes = ZRMLinuxKeyedArchiver().encode(with(1.5)).value();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_EQ(readingCode({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}),
                  EINVAL);
    }
}

TEST(ZRMLinuxKeyedArchiver, AnArchiveOfAnotherShapeIsAnError) {
    EXPECT_EQ(readingCode(tampered([](plist_t, plist_t) {})), 0);
    EXPECT_EQ(readingCode(
                  tampered([](plist_t root, plist_t) { plist_dict_remove_item(root, "$class"); })),
              EINVAL);
    EXPECT_EQ(readingCode(tampered([](plist_t root, plist_t) {
                  plist_dict_set_item(root, "$version", plist_new_uint(2));
              })),
              EINVAL);
    EXPECT_EQ(readingCode(tampered([](plist_t root, plist_t) {
                  plist_dict_set_item(root, "fields", plist_new_dict());
              })),
              EINVAL);
    EXPECT_EQ(
        readingCode(tampered([](plist_t, plist_t field) { plist_dict_remove_item(field, "key"); })),
        EINVAL);
    EXPECT_EQ(readingCode(
                  tampered([](plist_t, plist_t field) { plist_dict_remove_item(field, "value"); })),
              EINVAL);
    EXPECT_EQ(readingCode(tampered([](plist_t, plist_t field) {
                  plist_dict_set_item(field, "type", plist_new_string("other"));
              })),
              EINVAL);
    EXPECT_EQ(readingCode(tampered([](plist_t root, plist_t field) {
                  plist_array_append_item(zrm_propertyListEntry(root, "fields"), plist_copy(field));
              })),
              EINVAL);  // the same key twice
}

TEST(ZRMLinuxKeyedArchiver, AValueOfAnotherTypeThanStatedIsAnError) {
    for (const char* type : {"date", "double", "integer", "bool", "data", "object"}) {
        EXPECT_EQ(readingCode(tampered([type](plist_t, plist_t field) {
                      plist_dict_set_item(field, "type", plist_new_string(type));
                  })),
                  EINVAL)
            << type;
    }
    EXPECT_EQ(readingCode(tampered([](plist_t, plist_t field) {
                  plist_dict_set_item(field, "value", plist_new_real(1));
              })),
              EINVAL);
}
