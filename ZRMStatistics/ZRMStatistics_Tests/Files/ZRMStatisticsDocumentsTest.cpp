// The pages about the formats say what the code does.
#include <cctype>
#include <string>

#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::HasSubstr;

std::string page(const std::string& name) {
    return zrm_testFileText(std::string(ZRM_DOCUMENTS) + "/formats/" + name);
}

// The bytes of the hexadecimal lines between the marks.
ZRMData bytesBetween(const std::string& text, const std::string& from, const std::string& to) {
    const auto begin = text.find(from) + from.size();
    ZRMData bytes;
    std::string digits;
    for (const char character : text.substr(begin, text.find(to, begin) - begin)) {
        if (std::isxdigit(static_cast<unsigned char>(character)) != 0) {
            digits += character;
        }
        if (digits.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

const ZRMDictionary kExample{{"LOGIN", {{"user", "alice"}}}};

using ZRMStatisticsDocumentsTest = ZRMStatisticsDeviceTest;

}  // namespace

TEST_F(ZRMStatisticsDocumentsTest, StorePageShowsTheSchema) {
    const auto context = openContext();
    auto database = openDatabase();
    SQLite::Statement schema(database, "SELECT sql FROM sqlite_master ORDER BY rowid");
    while (schema.executeStep()) {
        EXPECT_THAT(page("store.md"), HasSubstr(schema.getColumn(0).getString() + ";\n"));
    }
}

TEST_F(ZRMStatisticsDocumentsTest, UploadBodyPageShowsEachStepOfTheExample) {
    const auto jws = ZRMStatisticsBodyMaker().jwsDataWithParameters(kExample);
    const auto text = page("upload-body.md");
    EXPECT_THAT(text, HasSubstr(R"({"array":[{"LOGIN":{"user":"alice"}}]})"));
    EXPECT_THAT(text, HasSubstr(zrm_textFromData(*jws) + "\n"));
    EXPECT_THAT(text, HasSubstr("its length (" + std::to_string(jws->size()) + ")"));
}

TEST_F(ZRMStatisticsDocumentsTest, UploadBodyPageShowsTheCompressedBytes) {
    const auto body = ZRMStatisticsBodyMaker().bodyWithParameters(kExample);
    const auto shown = bytesBetween(page("upload-body.md"), " bytes:\n", "The last eight");
    EXPECT_EQ(zrm_ungzipData(shown), zrm_ungzipData(*body)) << zrm_hexString(*body);
    EXPECT_THAT(page("upload-body.md"),
                HasSubstr("The " + std::to_string(shown.size()) + " bytes:\n"));
}
