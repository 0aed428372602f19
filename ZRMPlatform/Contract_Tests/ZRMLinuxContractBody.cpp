#include <map>
#include <mutex>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"
#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Linux/ZRMLinuxReachability.h"
#include "ZRMPlatform/Linux/ZRMLinuxUserDefaults.h"
#include "ZRMPlatform/Linux_Tests/ZRMLinuxRouteStubs.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestHttpServer.h"

namespace {

class LinuxBody final : public ZRMContractBody {
  public:
    LinuxBody() {
        restart();
        platform_->fileManager->createDirectory(home_.below("scratch"));
    }
    // Before the home goes.
    ~LinuxBody() override { ZRMLinuxUserDefaults::synchronize(); }
    LinuxBody(const LinuxBody&) = delete;
    LinuxBody& operator=(const LinuxBody&) = delete;

    std::shared_ptr<const ZRMPlatform> platform() override { return platform_; }
    bool waitFor(ZRMContractNotes& notes, const ZRMContractNotes::Predicate& fits) override {
        return notes.blockUntil(fits);
    }
    std::string scratchDirectory() override { return home_.below("scratch"); }

    void serve(const std::string& path, ZRMContractAnswer answer) override {
        const std::lock_guard lock(mutex_);
        answers_[path] = std::move(answer);
    }
    std::string url(const std::string& path) override { return server().url(path); }
    std::string refusingUrl() override {
        const ZRMTestHttpServer gone([](const auto&, auto&) { return false; });
        return gone.url("/refused");
    }
    std::vector<ZRMContractRequest> requests() override {
        std::vector<ZRMContractRequest> requests;
        for (const auto& seen : server().requests()) {
            ZRMContractRequest request{
                seen.head.substr(0, seen.head.find(' ')), seen.path(), {}, seen.body};
            for (const auto& line : seen.headerLines()) {
                const auto colon = line.find(": ");
                request.headers.set(line.substr(0, colon), line.substr(colon + 2));
            }
            requests.push_back(std::move(request));
        }
        return requests;
    }
    void restart() override {
        ZRMLinuxUserDefaults::synchronize();
        ZRMLinuxPlatformOptions options;
        options.homeDirectory = home_.below("home");
        options.hostSignals = signals_;
        platform_ = zrm_makeLinuxPlatform(options);
    }

    std::shared_ptr<ZRMReachabilityTargets> changeableTargets() override {
        home_.writeFile("links/wlan0/ifindex", std::to_string(kZRMStubWifi));
        home_.writeFile("links/wwan0/ifindex", std::to_string(kZRMStubModem));
        return std::make_shared<ZRMLinuxReachabilityTargets>(
            routes_, changes_, ZRMLinuxInterfaces(home_.below("links")),
            std::vector<ZRMLinuxResolveOverride>());
    }
    void setFlags(std::optional<std::uint32_t> flags) override {
        auto leavingBy = flags;
        if (flags && *flags != 0) {
            leavingBy = (*flags & ZRMReachabilityIsCellular) != 0 ? kZRMStubModem : kZRMStubWifi;
        }
        routes_->set(leavingBy, leavingBy);
        changes_->announce();
    }

    void updateCall(const ZRMCall& call) override { signals_->calls.update(call); }
    void notify(ZRMApplicationNotification notification) override {
        signals_->notifications.post(notification);
    }
    void setBiometrics(const ZRMBiometricEvaluation& evaluation) override {
        signals_->biometrics.tell(evaluation);
    }
    void setLocationServicesEnabled(bool enabled) override {
        signals_->location.setServicesEnabled(enabled);
    }
    void setLocationAuthorization(int status) override { signals_->location.setStatus(status); }
    void deliverLocations(const std::vector<ZRMLocation>& locations) override {
        signals_->location.deliver(locations);
    }
    void failLocation(const ZRMError& error) override { signals_->location.fail(error); }

  private:
    ZRMTestHttpServer& server() {
        if (!server_) {
            server_ = std::make_unique<ZRMTestHttpServer>(
                [this](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
                    return answer(request.path(), connection);
                });
        }
        return *server_;
    }

    bool answer(const std::string& path, ZRMTestConnection& connection) {
        ZRMContractAnswer answer;
        {
            const std::lock_guard lock(mutex_);
            answer = answers_[path];
        }
        if (answer.isSilent) {
            connection.waitForClose();
            return false;
        }
        std::string headers;
        for (const auto& [name, value] : answer.headers) {
            headers.append(name).append(": ").append(value).append("\r\n");
        }
        auto bytes = zrm_testHttpAnswer(answer.status, answer.body, headers);
        if (answer.lostAfterBytes) {
            bytes.resize(bytes.size() - answer.body.size() + *answer.lostAfterBytes);
            connection.write(bytes);
            return false;
        }
        return connection.write(bytes);
    }

    ZRMTestDirectory home_;
    const std::shared_ptr<ZRMHostSignals> signals_ = std::make_shared<ZRMHostSignals>();
    std::shared_ptr<const ZRMPlatform> platform_;
    std::shared_ptr<ZRMStubRoutes> routes_ = std::make_shared<ZRMStubRoutes>();
    std::shared_ptr<ZRMStubRouteChanges> changes_ = std::make_shared<ZRMStubRouteChanges>();
    std::mutex mutex_;
    std::map<std::string, ZRMContractAnswer> answers_;
    std::unique_ptr<ZRMTestHttpServer> server_;
};

}  // namespace

std::unique_ptr<ZRMContractBody> zrm_makeLinuxContractBody() {
    return std::make_unique<LinuxBody>();
}
