#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class SimulatedBody final : public ZRMContractBody {
  public:
    SimulatedBody() { device_.platform()->fileManager->createDirectory(kScratch); }

    std::shared_ptr<const ZRMPlatform> platform() override { return device_.platform(); }
    bool waitFor(ZRMContractNotes& notes, const ZRMContractNotes::Predicate& fits) override {
        constexpr double kLongSeconds = 3600;
        return device_.runUntil([&] { return fits(notes.all()); }, kLongSeconds);
    }
    std::string scratchDirectory() override { return kScratch; }

    void serve(const std::string& path, ZRMContractAnswer answer) override {
        device_.network().handle(path, [answer](const ZRMUrlRequest&) {
            auto simulated = answer.isSilent ? ZRMSimulatedAnswer::never()
                                             : ZRMSimulatedAnswer::withBody(answer.body);
            simulated.status = answer.status;
            simulated.lostAfterBytes = answer.lostAfterBytes;
            for (const auto& [name, value] : answer.headers) {
                simulated.headers.set(name, value);
            }
            return simulated;
        });
    }
    std::string url(const std::string& path) override { return "http://127.0.0.1:8080" + path; }
    std::string refusingUrl() override {
        device_.network().handle("/refused", [](const ZRMUrlRequest&) {
            return ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotConnectToHost);
        });
        return url("/refused");
    }
    std::vector<ZRMContractRequest> requests() override {
        std::vector<ZRMContractRequest> requests;
        for (const auto& record : device_.network().requests()) {
            requests.push_back(
                {record.request.method, record.path(), record.request.headers, record.bodyText()});
        }
        return requests;
    }
    void restart() override { device_.restartProcess(); }

    std::shared_ptr<ZRMReachabilityTargets> changeableTargets() override {
        return device_.platform()->reachabilityTargets;
    }
    void setFlags(std::optional<std::uint32_t> flags) override {
        device_.reachability().setFlags(flags);
    }

    void updateCall(const ZRMCall& call) override { device_.calls().update(call); }
    void notify(ZRMApplicationNotification notification) override {
        device_.notifications().post(notification);
    }
    void setBiometrics(const ZRMBiometricEvaluation& evaluation) override {
        device_.localAuthentication().evaluation = evaluation;
    }
    void setLocationServicesEnabled(bool enabled) override {
        device_.location().setServicesEnabled(enabled);
    }
    void setLocationAuthorization(int status) override { device_.location().setStatus(status); }
    void deliverLocations(const std::vector<ZRMLocation>& locations) override {
        device_.location().deliver(locations);
    }
    void failLocation(const ZRMError& error) override { device_.location().fail(error); }

  private:
    static constexpr const char* kScratch = "/device/scratch";
    ZRMSimulatedDevice device_;
};

}  // namespace

std::unique_ptr<ZRMContractBody> zrm_makeSimulatedContractBody() {
    return std::make_unique<SimulatedBody>();
}
