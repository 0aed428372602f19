#include <cstdio>
#include <fstream>
#include <sstream>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Tools/zrm-inspect/ZRMInspector.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"

namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;

    [[nodiscard]] ZRMDictionary report() const { return boost::json::parse(out).as_object(); }
};

ToolRun inspect(std::vector<const char*> words) {
    words.insert(words.begin(), "zrm-inspect");
    std::ostringstream out;
    std::ostringstream err;
    const int status = zrm_inspect(static_cast<int>(words.size()), words.data(), out, err);
    return {status, out.str(), err.str()};
}

struct TextRow {
    std::vector<const char*> words;
    int status;
    const char* out;
};

void PrintTo(const TextRow& row, std::ostream* out) {
    *out << testing::PrintToString(row.words);
}

class ZRMInspectorText : public testing::TestWithParam<TextRow> {
  protected:
    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
};

TEST_P(ZRMInspectorText, PrintsOneLineOfJsonAndEndsWithItsStatus) {
    const auto run = inspect(GetParam().words);
    EXPECT_EQ(run.out, std::string(GetParam().out) + "\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ZRMInspectorText,
    testing::Values(
        TextRow{{"duration", "P1DT1H1M1S"},
                0,
                R"({"seconds":90061,"components":{"day":1,"hour":1,"minute":1,"second":1}})"},
        TextRow{{"duration", "P1Y2M"}, 0, R"({"seconds":0,"components":{"year":1,"month":2}})"},
        TextRow{{"duration", "P3W"}, 0, R"({"seconds":0,"components":{"week":3}})"},
        TextRow{{"duration", "P-1D"}, 0, R"({"seconds":-86400,"components":{"day":-1}})"},
        TextRow{{"duration", "PT-1S"}, 0, R"({"seconds":-1,"components":{"second":-1}})"},
        TextRow{{"duration", "2H"}, 1, R"({"seconds":-1,"components":null})"},
        TextRow{{"duration", ""}, 1, R"({"seconds":-1,"components":null})"},
        TextRow{{"duration", "-P1D"}, 1, R"({"seconds":-1,"components":null})"},
        TextRow{{"server-date", "Tue, 05 Mar 2024 07:08:09 GMT"}, 0, R"({"seconds":1709622489})"},
        TextRow{{"server-date", "2024-03-05"}, 1, R"({"seconds":null})"},
        TextRow{{"http-url", "https://risk.example.com/stat?a=b"}, 0, R"({"valid":true})"},
        TextRow{{"http-url", "https://127.0.0.1/stat"}, 1, R"({"valid":false})"},
        TextRow{{"http-url", "a b"}, 1, R"({"valid":false})"},
        TextRow{{"base64url", "encode", "a?>"}, 0, R"({"text":"YT8-"})"},
        TextRow{{"base64url", "encode", ""}, 0, R"({"text":""})"},
        TextRow{{"base64url", "encode", "--help me"}, 0, R"({"text":"LS1oZWxwIG1l"})"},
        TextRow{{"base64url", "decode", "YWI"}, 0, R"({"text":"ab","hex":"6162"})"},
        TextRow{{"base64url", "decode", "-_8"}, 0, R"({"text":null,"hex":"fbff"})"},
        TextRow{{"base64url", "decode", "--", "-_8"}, 0, R"({"text":null,"hex":"fbff"})"},
        TextRow{{"base64url", "decode", ""}, 0, R"({"text":"","hex":""})"},
        TextRow{{"base64url", "decode", "Y"}, 1, R"({"text":null,"hex":null})"},
        TextRow{{"base64url", "decode", "Y!"}, 1, R"({"text":null,"hex":null})"}));

TEST(ZRMInspector, HelpNamesTheSubcommandsAndExitsZero) {
    const auto run = inspect({"--help"});
    EXPECT_EQ(run.status, 0);
    for (const auto* name : {"upload", "store", "jws", "settings", "duration", "server-date",
                             "http-url", "base64url"}) {
        EXPECT_THAT(run.out, testing::HasSubstr(name));
    }
    EXPECT_EQ(inspect({"duration", "--help"}).status, 0);
    EXPECT_EQ(inspect({"base64url", "--help"}).status, 0);
}

TEST(ZRMInspector, WrongUsageExitsTwoAndSaysWhy) {
    const std::vector<std::vector<const char*>> wrong{{},
                                                      {"--unknown"},
                                                      {"dance"},
                                                      {"upload"},
                                                      {"duration"},
                                                      {"duration", "P1D", "P2D"},
                                                      {"base64url"},
                                                      {"base64url", "encode"},
                                                      {"base64url", "recode", "a"}};
    for (const auto& words : wrong) {
        const auto run = inspect(words);
        EXPECT_EQ(run.status, 2) << (words.empty() ? "" : words.back());
        EXPECT_EQ(run.out, "");
        EXPECT_FALSE(run.err.empty());
    }
}

class ZRMInspectorFile : public testing::Test {
  protected:
    ZRMInspectorFile() : path_(testing::TempDir() + "zrm-inspect-" + std::to_string(::getpid())) {}
    ~ZRMInspectorFile() override { std::remove(path_.c_str()); }

    [[nodiscard]] ToolRun inspectContent(const char* subcommand, const std::string& content) const {
        std::ofstream(path_, std::ios::binary) << content;
        return inspect({subcommand, path_.c_str()});
    }

    static std::string gzipped(const std::string& document) {
        return zrm_textFromData(zrm_gzipData(zrm_dataFromText(document)));
    }

    // Status 1 and an error of that domain and code.
    void expectUploadError(const std::string& content, const char* domain, int code) const {
        const auto run = inspectContent("upload", content);
        EXPECT_EQ(run.status, 1);
        const auto report = run.report();
        EXPECT_TRUE(report.at("event").is_null());
        EXPECT_TRUE(report.at("eventType").is_null());
        EXPECT_EQ(report.at("error").as_object().at("domain").as_string(), domain) << run.out;
        EXPECT_EQ(report.at("error").as_object().at("code").as_int64(), code) << run.out;
    }

    void expectPayloadRefused(const std::string& payload) const {
        expectUploadError(gzipped(R"({"payload":")" + payload + R"(","signatures":[]})"),
                          "ZRMInspectErrorDomain", 3);
    }

    std::string path_;
};

TEST_F(ZRMInspectorFile, UploadShowsTheEventThatTheLibraryWrote) {
    const auto body = ZRMStatisticsBodyMaker().bodyWithParameters({{"LOGIN", {{"userId", "u1"}}}});
    const auto run = inspectContent("upload", zrm_textFromData(*body));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, R"({"bytes":)" + std::to_string(body->size()) +
                           R"(,"eventType":"LOGIN","event":{"LOGIN":{"userId":"u1"}},)"
                           R"("error":null})"
                           "\n");
}

TEST_F(ZRMInspectorFile, UploadRefusesWhatIsNotWholeGzip) {
    const auto body = gzipped(R"({"payload":"eyJhcnJheSI6W119","signatures":[]})");
    expectUploadError("", "ZRMInspectErrorDomain", 1);
    expectUploadError("plain", "ZRMInspectErrorDomain", 1);
    expectUploadError(body.substr(0, 8), "ZRMInspectErrorDomain", 1);
    expectUploadError(body.substr(0, body.size() - 1), "ZRMInspectErrorDomain", 1);
    expectUploadError(body.substr(0, body.size() - 8), "ZRMInspectErrorDomain", 1);
    expectUploadError(body + "more and more", "ZRMInspectErrorDomain", 1);
}

TEST_F(ZRMInspectorFile, UploadRefusesWhatIsNoUnsignedJws) {
    expectUploadError(gzipped("{"), "NSCocoaErrorDomain", 3840);
    expectUploadError(gzipped("[]"), "ZRMJwsObjectErrorDomain", 1);
    expectUploadError(gzipped(R"({"payload":"e30"})"), "ZRMJwsObjectErrorDomain", 0);
    expectUploadError(
        gzipped(
            R"({"payload":"e30","signatures":[{"protected":"a","signature":"b","header":{}}]})"),
        "ZRMInspectErrorDomain", 2);
    expectUploadError(gzipped(R"({"payload":"e3!","signatures":[]})"), "ZRMInspectErrorDomain", 2);
    expectUploadError(gzipped(R"({"payload":"eA","signatures":[]})"), "NSCocoaErrorDomain", 3840);
}

TEST_F(ZRMInspectorFile, UploadRefusesAPayloadThatIsNotOneEvent) {
    expectPayloadRefused("W10");                                      // []
    expectPayloadRefused("e30");                                      // {}
    expectPayloadRefused("eyJhcnJheSI6e319");                         // {"array":{}}
    expectPayloadRefused("eyJhcnJheSI6W119");                         // {"array":[]}
    expectPayloadRefused("eyJhcnJheSI6WzFdfQ");                       // {"array":[1]}
    expectPayloadRefused("eyJhcnJheSI6W3t9XX0");                      // {"array":[{}]}
    expectPayloadRefused("eyJhcnJheSI6W3siQSI6MX1dfQ");               // {"array":[{"A":1}]}
    expectPayloadRefused("eyJhcnJheSI6W3siQSI6e319LHsiQiI6e319XX0");  // two events
}

TEST_F(ZRMInspectorFile, ReportsAFileThatCannotBeRead) {
    for (const auto* subcommand : {"upload", "jws", "settings"}) {
        const auto run = inspect({subcommand, "/nowhere/at/all"});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.report().at("error").as_object().at("domain").as_string(),
                  "NSPOSIXErrorDomain");
    }
}

TEST_F(ZRMInspectorFile, JwsTakesItsOptionsBehindTheFileInAnyOrder) {
    const std::string path = "/nowhere/at/all";
    for (const std::vector<const char*>& options :
         {std::vector<const char*>{"--no-revocation"},
          {"--pinned-anchors-only", "--no-revocation"},
          {"--root", "/nowhere/root.pem", "--at", "1700000000", "--pinned-anchors-only"},
          {"--at", "1700000000.5"}}) {
        std::vector<const char*> words{"jws", path.c_str()};
        words.insert(words.end(), options.begin(), options.end());
        const auto run = inspect(words);
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(run.report().at("validity").is_null());
    }
    EXPECT_EQ(inspect({"jws", path.c_str(), "--at", "noon"}).status, 2);
    EXPECT_EQ(inspect({"jws", path.c_str(), "--at"}).status, 2);
    EXPECT_EQ(inspect({"jws", path.c_str(), "--root"}).status, 2);
    EXPECT_EQ(inspect({"jws", path.c_str(), "--unknown"}).status, 2);
}

TEST_F(ZRMInspectorFile, JwsTellsWhichPartIsInvalid) {
    const std::pair<const char*, int> rows[] = {
        {R"({"payload":1,"signatures":[]})", 1},
        {R"({"signatures":[]})", 1},
        {"[]", 1},
        {R"({"payload":"e30"})", 0},
        {R"({"payload":"e30","signatures":[{"protected":"a","signature":"b"}]})", 0},
        {R"({"payload":"e30","signatures":[{"protected":"","signature":"b","header":{}}]})", 0}};
    for (const auto& [document, validity] : rows) {
        const auto run = inspectContent("jws", document);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.report().at("validity").as_int64(), validity) << document;
        EXPECT_EQ(run.report().at("error").as_object().at("code").as_int64(), validity);
        EXPECT_EQ(run.report().at("error").as_object().at("domain").as_string(),
                  "ZRMJwsObjectErrorDomain");
    }
}

TEST_F(ZRMInspectorFile, JwsHasNoValidityForWhatIsNoJson) {
    const auto run = inspectContent("jws", "{");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.report().at("validity").is_null());
    EXPECT_EQ(run.report().at("error").as_object().at("domain").as_string(), "NSCocoaErrorDomain");
}

}  // namespace
