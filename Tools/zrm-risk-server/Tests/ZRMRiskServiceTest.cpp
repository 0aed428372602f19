#include <cstdio>
#include <fstream>
#include <sstream>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tools/zrm-risk-server/Tests/ZRMUploadSamples.h"
#include "Tools/zrm-risk-server/ZRMRiskService.h"

namespace {

using Manner = ZRMServerReply::Manner;

std::vector<ZRMFault> faults(std::initializer_list<const char*> texts) {
    std::vector<ZRMFault> read;
    for (const auto* text : texts) {
        read.push_back(*ZRMFault::parse(text));
    }
    return read;
}

class ZRMRiskServiceTest : public testing::Test {
  protected:
    ZRMRiskServiceTest()
        : path_(testing::TempDir() + "zrm-events-" +
                testing::UnitTest::GetInstance()->current_test_info()->name()) {
        std::remove(path_.c_str());
    }
    ~ZRMRiskServiceTest() override { std::remove(path_.c_str()); }

    [[nodiscard]] std::unique_ptr<ZRMEventsFile> events() const {
        return std::make_unique<ZRMEventsFile>(path_);
    }

    [[nodiscard]] std::string fileContent() const {
        std::ostringstream content;
        content << std::ifstream(path_).rdbuf();
        return content.str();
    }

    std::string path_;
    std::ostringstream log_;
};

TEST_F(ZRMRiskServiceTest, AnswersAGoodUploadAndKeepsOneLine) {
    ZRMRiskService service(events(), {}, false, log_);
    const auto request = zrm_uploadRequest();
    const auto reply = service.handle(request);
    EXPECT_EQ(reply.manner, Manner::Answer);
    EXPECT_EQ(reply.answer.status, 200);
    EXPECT_EQ(log_.str(), "POST /stat 200\n");

    const auto content = fileContent();
    ASSERT_THAT(content, testing::EndsWith("}\n"));
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 1);
    const auto line = boost::json::parse(content).as_object();
    EXPECT_GT(line.at("time").as_double(), 1.6e9);
    EXPECT_EQ(line.at("path").as_string(), "/stat");
    EXPECT_EQ(line.at("bytes").to_number<std::size_t>(), request.body.size());
    EXPECT_EQ(line.at("eventType").as_string(), "LOGIN");
    EXPECT_EQ(boost::json::serialize(line.at("event")), R"({"LOGIN":{"userId":"u1"}})");
    EXPECT_EQ(line.at("headers").as_object().at("Request-Send-Timestamp").as_string(),
              "1763689123");
    EXPECT_EQ(line.size(), 6U);
}

TEST_F(ZRMRiskServiceTest, KeepsHeaderNamesAsTheyArrivedAndJoinsRepeatedOnes) {
    auto request = zrm_uploadRequest();
    request.headers.emplace_back("x-ODD", "one");
    request.headers.emplace_back("x-ODD", "two");
    const auto line = zrm_eventLine({}, request, zrm_readUpload(request));
    EXPECT_THAT(line, testing::HasSubstr(R"("x-ODD":"one, two")"));
}

TEST_F(ZRMRiskServiceTest, RefusesAMalformedUploadWithAReasonAndReportsItEvenWhenQuiet) {
    ZRMRiskService service(events(), {}, true, log_);
    const auto reply = service.handle(zrm_uploadRequest("nothing"));
    EXPECT_EQ(reply.answer.status, 400);
    EXPECT_EQ(reply.answer.contentType, "application/json");
    EXPECT_EQ(reply.answer.body, R"({"error":"the body is not whole gzip data"})");
    EXPECT_EQ(log_.str(), "malformed upload: the body is not whole gzip data\n");
    EXPECT_EQ(fileContent(), "");
}

TEST_F(ZRMRiskServiceTest, SaysNothingOfGoodUploadsWhenQuiet) {
    ZRMRiskService service(nullptr, {}, true, log_);
    EXPECT_EQ(service.handle(zrm_uploadRequest()).answer.status, 200);
    EXPECT_EQ(log_.str(), "");
}

TEST_F(ZRMRiskServiceTest, AnswersServerErrorWhenTheEventsFileCannotTakeTheLine) {
    ZRMRiskService service(std::make_unique<ZRMEventsFile>("/dev/full"), {}, true, log_);
    EXPECT_EQ(service.handle(zrm_uploadRequest()).answer.status, 500);
    EXPECT_THAT(log_.str(), testing::StartsWith("upload not kept: "));
}

TEST_F(ZRMRiskServiceTest, AnswersOtherPathsAndMethods) {
    ZRMRiskService service(nullptr, {}, true, log_);
    const auto status = [&](const char* method, const char* target) {
        auto request = zrm_uploadRequest();
        request.method = method;
        request.target = target;
        return service.handle(request).answer.status;
    };
    EXPECT_EQ(status("POST", "/"), 404);
    EXPECT_EQ(status("POST", "/stat/"), 404);
    EXPECT_EQ(status("GET", "/stat"), 405);
    EXPECT_EQ(status("POST", "/stat?a=b"), 200);
    EXPECT_EQ(status("POST", "/config/v1"), 404);
    EXPECT_EQ(status("POST", "/zwjsqd"), 404);
}

TEST_F(ZRMRiskServiceTest, HasNothingToServeBesideUploadsWithoutDocuments) {
    ZRMRiskService service(nullptr, {}, true, log_);
    const auto status = [&service](const char* method, const char* target) {
        ZRMServerRequest request;
        request.method = method;
        request.target = target;
        return service.handle(request).answer.status;
    };
    EXPECT_EQ(status("POST", "/ocsp"), 404);
    EXPECT_EQ(status("GET", "/crl/root.crl"), 404);
    EXPECT_EQ(status("GET", "/crl/intermediate.crl"), 404);
    EXPECT_EQ(status("POST", "/certificates/signing.crt"), 404);
    EXPECT_EQ(status("GET", "/ocsp"), 405);
    EXPECT_EQ(status("POST", "/crl/root.crl"), 405);
    EXPECT_EQ(status("PUT", "/certificates/signing.crt"), 405);
    EXPECT_EQ(status("", "/stat"), 405);
}

TEST_F(ZRMRiskServiceTest, CommitsFaultsInOrderAndThenServes) {
    ZRMRiskService service(
        events(), faults({"stat:503", "stat:reset", "stat:close", "stat:garbage"}), false, log_);
    const auto first = service.handle(zrm_uploadRequest());
    EXPECT_EQ(first.manner, Manner::Answer);
    EXPECT_EQ(first.answer.status, 503);
    EXPECT_EQ(service.handle(zrm_uploadRequest()).manner, Manner::Reset);
    EXPECT_EQ(service.handle(zrm_uploadRequest()).manner, Manner::Close);
    EXPECT_EQ(service.handle(zrm_uploadRequest()).manner, Manner::Garbage);
    EXPECT_EQ(fileContent(), "");
    EXPECT_EQ(service.handle(zrm_uploadRequest()).answer.status, 200);
    EXPECT_NE(fileContent(), "");
    EXPECT_EQ(log_.str(),
              "POST /stat fault: 503\nPOST /stat fault: reset\nPOST /stat fault: closed\n"
              "POST /stat fault: garbage\nPOST /stat 200\n");
}

TEST_F(ZRMRiskServiceTest, ServesADelayedRequestAndHoldsItsAnswerBack) {
    ZRMRiskService service(events(), faults({"stat:delay=2s"}), true, log_);
    const auto reply = service.handle(zrm_uploadRequest());
    EXPECT_EQ(reply.delay, std::chrono::seconds(2));
    EXPECT_EQ(reply.answer.status, 200);
    EXPECT_NE(fileContent(), "");
}

TEST_F(ZRMRiskServiceTest, FaultsBefallTheirOwnEndpointAlone) {
    ZRMRiskService service(nullptr, faults({"config:503", "tag:502"}), true, log_);
    EXPECT_EQ(service.handle(zrm_uploadRequest()).answer.status, 200);
    auto request = zrm_uploadRequest();
    request.target = "/config/v1";
    EXPECT_EQ(service.handle(request).answer.status, 503);
    request.target = "/zwjsqd";
    EXPECT_EQ(service.handle(request).answer.status, 502);
}

TEST(ZRMEventsFile, AppendsToWhatIsThere) {
    const auto path = testing::TempDir() + "zrm-events-append";
    std::remove(path.c_str());
    ZRMEventsFile(path).append("one\n");
    ZRMEventsFile(path).append("two\n");
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    std::remove(path.c_str());
    EXPECT_EQ(content.str(), "one\ntwo\n");
}

TEST(ZRMEventsFile, RefusesAPathThatCannotBeOpened) {
    EXPECT_THROW(ZRMEventsFile("/nowhere/at/all"), std::system_error);
}

}  // namespace
