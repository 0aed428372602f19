// A device body under test, and the few things about it that tests cannot ask a port for.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractNotes.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// What the body's HTTP server does with one request.
struct ZRMContractAnswer {
    int status = 200;
    std::vector<ZRMHttpHeaders::Field> headers = {};
    std::string body = {};
    bool isSilent = false;                           // never answers
    std::optional<std::size_t> lostAfterBytes = {};  // the connection ends within the body
};

// A request as the server saw it.
struct ZRMContractRequest {
    std::string method;
    std::string path;
    ZRMHttpHeaders headers;
    std::string body = {};
};

class ZRMContractBody {
  public:
    virtual ~ZRMContractBody() = default;

    [[nodiscard]] virtual std::shared_ptr<const ZRMPlatform> platform() = 0;
    // Lets queues and timers run until the notes fit; false when they do not for a long time.
    virtual bool waitFor(ZRMContractNotes& notes, const ZRMContractNotes::Predicate& fits) = 0;
    // An existing, empty directory.
    [[nodiscard]] virtual std::string scratchDirectory() = 0;

    // Answers to requests for the path come from here on.
    virtual void serve(const std::string& path, ZRMContractAnswer answer) = 0;
    [[nodiscard]] virtual std::string url(const std::string& path) = 0;
    // Where nobody listens.
    [[nodiscard]] virtual std::string refusingUrl() = 0;
    [[nodiscard]] virtual std::vector<ZRMContractRequest> requests() = 0;
    // As another run of the application: the stores of before, a new platform.
    virtual void restart() = 0;

    // Targets whose flags follow setFlags(): ZRMReachabilityReachable, that with
    // ZRMReachabilityIsCellular, 0, or absent where they cannot be read. Reachable at first.
    [[nodiscard]] virtual std::shared_ptr<ZRMReachabilityTargets> changeableTargets() = 0;
    virtual void setFlags(std::optional<std::uint32_t> flags) = 0;

    // What happens to the device.
    virtual void updateCall(const ZRMCall& call) = 0;
    virtual void notify(ZRMApplicationNotification notification) = 0;
    virtual void setBiometrics(const ZRMBiometricEvaluation& evaluation) = 0;
    virtual void setLocationServicesEnabled(bool enabled) = 0;
    virtual void setLocationAuthorization(int status) = 0;
    virtual void deliverLocations(const std::vector<ZRMLocation>& locations) = 0;
    virtual void failLocation(const ZRMError& error) = 0;
};

struct ZRMContractBodyKind {
    std::string name;
    std::unique_ptr<ZRMContractBody> (*make)();

    // The name a test has in a list of tests.
    friend void PrintTo(const ZRMContractBodyKind& kind, std::ostream* out) { *out << kind.name; }
};

std::unique_ptr<ZRMContractBody> zrm_makeSimulatedContractBody();
std::unique_ptr<ZRMContractBody> zrm_makeLinuxContractBody();

// For INSTANTIATE_TEST_SUITE_P.
inline auto zrm_contractBodies() {
    return testing::Values(ZRMContractBodyKind{"Simulated", &zrm_makeSimulatedContractBody},
                           ZRMContractBodyKind{"Linux", &zrm_makeLinuxContractBody});
}
inline std::string zrm_contractBodyName(
    const testing::TestParamInfo<ZRMContractBodyKind>& parameters) {
    return parameters.param.name;
}

// The base of every contract suite.
class ZRMContract : public testing::TestWithParam<ZRMContractBodyKind> {
  protected:
    [[nodiscard]] std::shared_ptr<const ZRMPlatform> platform() { return body_->platform(); }
    [[nodiscard]] std::shared_ptr<ZRMQueue> serialQueue(const std::string& label = "contract") {
        return platform()->executor->makeSerialQueue(label, ZRMQualityOfService::Default);
    }
    [[nodiscard]] std::shared_ptr<ZRMQueue> concurrentQueue() {
        return platform()->executor->concurrentQueue(ZRMQualityOfService::Default);
    }
    // A task that notes the text.
    [[nodiscard]] ZRMTask note(std::string text) {
        return [notes = notes_, text = std::move(text)] { notes->add(text); };
    }
    // Whether that many notes come.
    bool waitForNotes(std::size_t count) {
        return body_->waitFor(*notes_, [count](const auto& all) { return all.size() >= count; });
    }
    // Everything posted to the queue before is noted before "end".
    bool waitForEndOf(ZRMQueue& queue) {
        queue.post(note("end"));
        return waitForNote("end");
    }
    bool waitForNote(const std::string& text) {
        return body_->waitFor(*notes_, [&text](const auto& all) {
            return std::ranges::find(all, text) != all.end();
        });
    }
    [[nodiscard]] std::vector<std::string> notes() { return notes_->all(); }

    std::unique_ptr<ZRMContractBody> body_ = GetParam().make();
    // Shared, as a late task may come after the test.
    std::shared_ptr<ZRMContractNotes> notes_ = std::make_shared<ZRMContractNotes>();
};
