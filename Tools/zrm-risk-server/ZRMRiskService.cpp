#include "Tools/zrm-risk-server/ZRMRiskService.h"

#include <system_error>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include "Tools/zrm-risk-server/ZRMUpload.h"

namespace {

constexpr const char* kJose = "application/jose+json";
constexpr const char* kCrl = "application/pkix-crl";

ZRMServerAnswer refusal(int status, std::string_view reason) {
    boost::json::object body;
    body["error"] = reason;
    return {status, "application/json", boost::json::serialize(body)};
}

ZRMServerAnswer nothingToServe() {
    return refusal(404, "nothing to serve here");
}

// `methods` are separated by blanks.
bool allows(std::string_view methods, std::string_view method) {
    return !method.empty() &&
           (" " + std::string(methods) + " ").find(" " + std::string(method) + " ") !=
               std::string::npos;
}

}  // namespace

const ZRMRiskService::Endpoint ZRMRiskService::kEndpoints[] = {
    {"stat", "/stat", "POST", &ZRMRiskService::answerUpload},
    {"config", "/config/v1", "POST", &ZRMRiskService::answerSettings},
    {"tag", "/zwjsqd", "POST", &ZRMRiskService::answerTag},
    {"ocsp", ZRMSigningChain::kOcspPath, "POST", &ZRMRiskService::answerOcsp},
    {"crl", ZRMSigningChain::kRootCrlPath, "GET", &ZRMRiskService::answerRootCrl},
    {"crl", ZRMSigningChain::kIntermediateCrlPath, "GET", &ZRMRiskService::answerIntermediateCrl},
    {"x5u", ZRMSigningChain::kLeafPath, "GET POST", &ZRMRiskService::answerLeaf},
};

ZRMRiskService::ZRMRiskService(std::unique_ptr<ZRMEventsFile> events, std::vector<ZRMFault> faults,
                               bool quiet, std::ostream& log)
    : events_(std::move(events)), faults_(std::move(faults)), quiet_(quiet), log_(log) {}

const ZRMRiskService::Endpoint* ZRMRiskService::endpointAt(std::string_view path) {
    for (const auto& endpoint : kEndpoints) {
        if (endpoint.path == path) {
            return &endpoint;
        }
    }
    return nullptr;
}

ZRMServerReply ZRMRiskService::handle(const ZRMServerRequest& request) {
    using Manner = ZRMServerReply::Manner;
    const auto* endpoint = endpointAt(request.path());
    const auto fault = endpoint != nullptr ? faults_.take(endpoint->name) : std::nullopt;
    ZRMServerReply reply;
    std::string note;
    if (fault && fault->kind == ZRMFault::Kind::Close) {
        reply.manner = Manner::Close;
        note = "fault: closed";
    } else if (fault && fault->kind == ZRMFault::Kind::Reset) {
        reply.manner = Manner::Reset;
        note = "fault: reset";
    } else if (fault && fault->kind == ZRMFault::Kind::Garbage) {
        reply.manner = Manner::Garbage;
        note = "fault: garbage";
    } else if (fault && fault->kind == ZRMFault::Kind::Status) {
        reply.answer = refusal(fault->status, "fault");
        note = "fault: " + std::to_string(fault->status);
    } else {
        reply.delay = fault ? fault->delay : reply.delay;
        if (endpoint == nullptr) {
            reply.answer = refusal(404, "no such endpoint");
        } else if (!allows(endpoint->methods, request.method)) {
            reply.answer =
                refusal(405, "only " + std::string(endpoint->methods) + " is served here");
        } else {
            reply.answer = (this->*endpoint->answer)(request);
        }
        note = std::to_string(reply.answer.status);
    }
    if (!quiet_) {
        logLine(request.method + " " + request.target + " " + note);
    }
    return reply;
}

ZRMServerAnswer ZRMRiskService::answerUpload(const ZRMServerRequest& request) {
    try {
        const auto upload = zrm_readUpload(request);
        if (events_) {
            events_->append(zrm_eventLine(std::chrono::system_clock::now(), request, upload));
        }
        return {200, "application/json", "{}"};
    } catch (const ZRMMalformedUpload& malformed) {
        logLine("malformed upload: " + std::string(malformed.what()));
        return refusal(400, malformed.what());
    } catch (const std::system_error& failure) {
        logLine("upload not kept: " + std::string(failure.what()));
        return refusal(500, "the upload could not be kept");
    }
}

ZRMServerAnswer ZRMRiskService::answerSettings(const ZRMServerRequest&) {
    try {
        const auto settings = documents_ ? documents_->settings() : std::nullopt;
        return settings ? ZRMServerAnswer{200, kJose, *settings} : nothingToServe();
    } catch (const ZRMUnusableSettings& unusable) {
        logLine("settings not served: " + std::string(unusable.what()));
        return refusal(500, unusable.what());
    }
}

ZRMServerAnswer ZRMRiskService::answerTag(const ZRMServerRequest& request) {
    return documents_ ? ZRMServerAnswer{200, kJose,
                                        documents_->tag(request.header("Mobile-UUID").value_or(""))}
                      : nothingToServe();
}

ZRMServerAnswer ZRMRiskService::answerOcsp(const ZRMServerRequest& request) {
    if (!documents_) {
        return nothingToServe();
    }
    const auto response = documents_->chain().answerOcsp(request.body);
    return response ? ZRMServerAnswer{200, "application/ocsp-response", *response}
                    : refusal(400, "no OCSP request");
}

ZRMServerAnswer ZRMRiskService::answerRootCrl(const ZRMServerRequest&) {
    return documents_ ? ZRMServerAnswer{200, kCrl, documents_->chain().rootCrl()}
                      : nothingToServe();
}

ZRMServerAnswer ZRMRiskService::answerIntermediateCrl(const ZRMServerRequest&) {
    return documents_ ? ZRMServerAnswer{200, kCrl, documents_->chain().intermediateCrl()}
                      : nothingToServe();
}

ZRMServerAnswer ZRMRiskService::answerLeaf(const ZRMServerRequest&) {
    return documents_
               ? ZRMServerAnswer{200, "application/x-pem-file", documents_->chain().leafPem()}
               : nothingToServe();
}

void ZRMRiskService::logLine(const std::string& line) {
    const std::lock_guard lock(logMutex_);
    log_ << line << std::endl;
}
