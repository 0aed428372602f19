#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsRequest.h"

#include <utility>

ZRMUrlRequest zrm_statisticsRequest(const std::string& url, ZRMSharedData body,
                                    std::int64_t serverTimeMilliseconds,
                                    const std::map<std::string, std::string>& customHeaders) {
    ZRMUrlRequest request;
    request.method = "POST";
    request.url = url;
    request.headers.set("Content-Type", "application/jose+json");
    request.headers.set("Content-Encoding", "gzip");
    request.headers.set("Content-Length", std::to_string(body->size()));
    if (serverTimeMilliseconds != 0) {
        request.headers.set("Request-Server-Timestamp", std::to_string(serverTimeMilliseconds));
    }
    for (const auto& [name, value] : customHeaders) {
        request.headers.set(name, value);
    }
    request.body = std::move(body);
    return request;
}
