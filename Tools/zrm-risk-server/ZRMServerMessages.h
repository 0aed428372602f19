// The values that cross between the HTTP server and the service behind it.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct ZRMServerRequest {
    std::string method;
    std::string target;  // as it stands in the request line, query included
    // In the order and with the letter case of their arrival.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    // The first header of that name, whatever its letter case.
    [[nodiscard]] std::optional<std::string_view> header(std::string_view name) const;

    // The target without its query.
    [[nodiscard]] std::string_view path() const;
};

struct ZRMServerAnswer {
    int status = 200;
    std::string contentType = "application/json";
    std::string body;
};

// What the server does with a request: the answer it writes, or the harm it does instead.
struct ZRMServerReply {
    enum class Manner {
        Answer,
        Close,    // ends the connection in order, without an answer
        Reset,    // resets the TCP connection
        Garbage,  // writes bytes that are no HTTP, then closes
    };
    Manner manner = Manner::Answer;
    ZRMServerAnswer answer;
    std::chrono::milliseconds delay{0};  // before anything is written
};

// Makes the reply to each request. Called from several threads at once.
class ZRMRequestHandler {
  public:
    virtual ~ZRMRequestHandler() = default;
    virtual ZRMServerReply handle(const ZRMServerRequest& request) = 0;
};

// Whether two texts are equal when the case of ASCII letters is set aside.
bool zrm_equalIgnoringCase(std::string_view left, std::string_view right);
