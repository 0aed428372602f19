// What ZRMKeyedArchive.h promises.
#include <cmath>
#include <limits>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMKeyedArchiveContract : public ZRMContract {
  protected:
    ZRMData encode(const ZRMArchiveObject& object) {
        auto bytes = platform()->keyedArchiver->encode(object);
        EXPECT_TRUE(bytes);
        return bytes ? std::move(bytes).value() : ZRMData();
    }
    ZRMArchiveObject decode(const ZRMData& bytes) {
        auto object = platform()->keyedArchiver->decode(bytes);
        EXPECT_TRUE(object);
        return object ? std::move(object).value() : ZRMArchiveObject();
    }
    ZRMArchiveFields roundTrip(const ZRMArchiveFields& fields) {
        return decode(encode({"ZRMTest", fields})).fields;
    }
};

ZRMArchiveObject sample() {
    const auto inner = std::make_shared<const ZRMArchiveObject>(
        ZRMArchiveObject{"ZRMInner", {{"name", std::string("inner")}}});
    return {"ZRMOuter",
            {{"text", std::string("value")},
             {"number", 2.5},
             {"data", ZRMData{0, 1, 255}},
             {"inner", inner}}};
}

}  // namespace

TEST_P(ZRMKeyedArchiveContract, KeepsTheClassAndTheKeys) {
    const auto object = decode(encode({"ZRMCloudKitSettings", {{"a", true}, {"b", false}}}));
    EXPECT_EQ(object.className, "ZRMCloudKitSettings");
    ASSERT_EQ(object.fields.size(), 2u);
    EXPECT_EQ(object.fields.at("a"), ZRMArchiveValue(true));
    EXPECT_EQ(object.fields.at("b"), ZRMArchiveValue(false));
}

TEST_P(ZRMKeyedArchiveContract, AnObjectWithoutFieldsIsArchived) {
    const auto object = decode(encode({"ZRMEmpty", {}}));
    EXPECT_EQ(object.className, "ZRMEmpty");
    EXPECT_TRUE(object.fields.empty());
}

TEST_P(ZRMKeyedArchiveContract, TextsDecodeToEqualTexts) {
    for (const std::string text : {"", "a", "$null",
                                   "Gr\xc3\xbc\xc3\x9f"
                                   "e \xf0\x9f\x94\x91",
                                   "<&>\"'"}) {
        EXPECT_EQ(roundTrip({{"key", text}}).at("key"), ZRMArchiveValue(text)) << text;
    }
}

TEST_P(ZRMKeyedArchiveContract, NumbersDecodeToEqualNumbersOfTheirType) {
    for (const double number : {0.0, 5.0, -0.1, 1767225600.123456, 1e300}) {
        EXPECT_EQ(roundTrip({{"key", number}}).at("key"), ZRMArchiveValue(number)) << number;
    }
    for (const std::int64_t number :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{5}, std::int64_t{1} << 40,
          std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(roundTrip({{"key", number}}).at("key"), ZRMArchiveValue(number)) << number;
    }
}

TEST_P(ZRMKeyedArchiveContract, DatesKeepMillisecondPrecision) {
    for (const double seconds : {0.0, 1767225600.789, -86400.5, 4102444800.001}) {
        const auto decoded = roundTrip({{"key", ZRMDate{seconds}}}).at("key");
        ASSERT_TRUE(std::holds_alternative<ZRMDate>(decoded));
        EXPECT_LT(std::abs(std::get<ZRMDate>(decoded).secondsSince1970 - seconds), 0.0005);
    }
}

TEST_P(ZRMKeyedArchiveContract, DataDecodesToEqualData) {
    EXPECT_EQ(roundTrip({{"key", ZRMData()}}).at("key"), ZRMArchiveValue(ZRMData()));
    ZRMData bytes(1000);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<std::uint8_t>(index);
    }
    EXPECT_EQ(roundTrip({{"key", bytes}}).at("key"), ZRMArchiveValue(bytes));
}

TEST_P(ZRMKeyedArchiveContract, ObjectsWithinObjectsKeepTheirClassAndFields) {
    const auto outer = decode(encode(sample()));
    const auto& held = outer.fields.at("inner");
    ASSERT_TRUE(std::holds_alternative<std::shared_ptr<const ZRMArchiveObject>>(held));
    const auto& inner = *std::get<std::shared_ptr<const ZRMArchiveObject>>(held);
    EXPECT_EQ(inner.className, "ZRMInner");
    EXPECT_EQ(inner.fields.at("name"), ZRMArchiveValue(std::string("inner")));
}

TEST_P(ZRMKeyedArchiveContract, BytesThatAreNoArchiveAreAnError) {
    for (const std::string text :
         {"", "x", "bplist00", "bplist00\xff\xff", "{}", "<plist></plist>"}) {
        EXPECT_FALSE(platform()->keyedArchiver->decode(zrm_dataFromText(text))) << text;
    }
    EXPECT_FALSE(platform()->keyedArchiver->decode(ZRMData(10000, 0xff)));
}

TEST_P(ZRMKeyedArchiveContract, ACutArchiveIsAnErrorWhereverItIsCut) {
    const auto bytes = encode(sample());
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const ZRMData cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(platform()->keyedArchiver->decode(cut)) << length;
    }
}

TEST_P(ZRMKeyedArchiveContract, ADamagedArchiveNeverCrashes) {
    const auto bytes = encode(sample());
    std::size_t decoded = 0;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        for (const int damage : {0x01, 0x80, 0xff}) {
            auto damaged = bytes;
            damaged[index] = static_cast<std::uint8_t>(damaged[index] ^ damage);
            decoded += platform()->keyedArchiver->decode(damaged) ? 1 : 0;
        }
    }
    EXPECT_LT(decoded, bytes.size() * 3);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMKeyedArchiveContract, zrm_contractBodies(),
                         zrm_contractBodyName);
