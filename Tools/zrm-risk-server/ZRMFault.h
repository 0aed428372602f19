// Faults that the server commits on demand, so that clients can be tried against them.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One fault of an endpoint: ENDPOINT:KIND[*COUNT].
struct ZRMFault {
    enum class Kind { Status, Reset, Close, Garbage, Delay };

    std::string endpoint;  // "stat", "config", "tag", "ocsp", "crl" or "x5u"
    Kind kind = Kind::Status;
    int status = 0;                      // of Kind::Status, 200 to 599
    std::chrono::milliseconds delay{0};  // of Kind::Delay
    unsigned long count = 1;             // how many requests it befalls

    // Reads "stat:503*3", "config:reset", "tag:delay=2s", "stat:close", "stat:garbage"; absent for
    // anything else. Without a count the fault befalls one request.
    static std::optional<ZRMFault> parse(std::string_view text);

    friend bool operator==(const ZRMFault&, const ZRMFault&) = default;
};

// The faults still to come. From any thread.
class ZRMFaultPlan {
  public:
    explicit ZRMFaultPlan(std::vector<ZRMFault> faults) : faults_(std::move(faults)) {}

    // Uses up one turn of the endpoint's first fault that has turns left; absent once there is
    // none.
    std::optional<ZRMFault> take(std::string_view endpoint);

  private:
    std::mutex mutex_;
    std::vector<ZRMFault> faults_;
};
