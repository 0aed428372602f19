// The risk server's endpoints, apart from any transport.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Tools/zrm-risk-server/ZRMDocuments.h"
#include "Tools/zrm-risk-server/ZRMEventsFile.h"
#include "Tools/zrm-risk-server/ZRMFault.h"
#include "Tools/zrm-risk-server/ZRMServerMessages.h"

// Answers POST /stat; and, of the documents it is given, POST /config/v1 and POST /zwjsqd with what
// the certificates under them name: the OCSP responder, the lists of the revoked, the leaf. What
// there is nothing for is answered 404. An upload is in the events file before its answer is given.
class ZRMRiskService : public ZRMRequestHandler {
  public:
    // Where `events` is absent, uploads are only checked. `log` gets one line per malformed upload,
    // and, unless `quiet`, one per request; it outlives the service.
    ZRMRiskService(std::unique_ptr<ZRMEventsFile> events, std::vector<ZRMFault> faults, bool quiet,
                   std::ostream& log);

    // What to serve beside uploads. Before the first request.
    void setDocuments(std::unique_ptr<const ZRMDocuments> documents) {
        documents_ = std::move(documents);
    }

    // A fault comes before anything else: the request it befalls is not looked at, except that a
    // delayed one is served before its answer is held back.
    ZRMServerReply handle(const ZRMServerRequest& request) override;

  private:
    struct Endpoint {
        std::string_view name;
        std::string_view path;
        std::string_view methods;
        ZRMServerAnswer (ZRMRiskService::*answer)(const ZRMServerRequest&);
    };
    static const Endpoint kEndpoints[];
    static const Endpoint* endpointAt(std::string_view path);

    ZRMServerAnswer answerUpload(const ZRMServerRequest& request);
    ZRMServerAnswer answerSettings(const ZRMServerRequest& request);
    ZRMServerAnswer answerTag(const ZRMServerRequest& request);
    ZRMServerAnswer answerOcsp(const ZRMServerRequest& request);
    ZRMServerAnswer answerRootCrl(const ZRMServerRequest& request);
    ZRMServerAnswer answerIntermediateCrl(const ZRMServerRequest& request);
    ZRMServerAnswer answerLeaf(const ZRMServerRequest& request);
    void logLine(const std::string& line);

    std::unique_ptr<ZRMEventsFile> events_;
    std::unique_ptr<const ZRMDocuments> documents_;
    ZRMFaultPlan faults_;
    const bool quiet_;
    std::mutex logMutex_;
    std::ostream& log_;
};
