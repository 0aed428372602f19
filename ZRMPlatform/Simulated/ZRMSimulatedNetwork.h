// The network of a simulated device: answers by script, and a record of what was asked.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ZRMPlatform/Ports/ZRMUrlSession.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"

// What the far end does with one request.
struct ZRMSimulatedAnswer {
    int status = 200;
    ZRMHttpHeaders headers;
    ZRMData body;
    double delaySeconds = 0;  // until the headers come; no progress meanwhile
    double bodySeconds = 0;   // over which the body then comes, with steady progress
    // The exchange fails with this code of kZRMUrlErrorDomain instead, after the delay.
    std::optional<int> errorCode;
    // The connection breaks (ZRMUrlErrorNetworkConnectionLost) after so many bytes of the body.
    std::optional<std::size_t> lostAfterBytes;

    static ZRMSimulatedAnswer withStatus(int status);
    static ZRMSimulatedAnswer withBody(std::string_view body);
    static ZRMSimulatedAnswer withError(int errorCode);
    // The far end keeps silent, so that the request's time-outs strike.
    static ZRMSimulatedAnswer never();

    [[nodiscard]] ZRMSimulatedAnswer after(double seconds) const;
};

struct ZRMSimulatedRequestRecord {
    ZRMUrlRequest request;
    ZRMUrlSessionConfiguration configuration;
    ZRMDate startedAt;
    double startedAtUptimeSeconds = 0;

    // The path of the request's URL, without query and fragment.
    [[nodiscard]] std::string path() const;
    // The body as text; empty when there is none.
    [[nodiscard]] std::string bodyText() const;
};

// An answer is sought in this order: the next one in the script of the URL's path, the handler of
// that path, the handler of everything, status 200. One thread; kept over restarts of the process.
class ZRMSimulatedNetwork {
  public:
    using Handler = std::function<ZRMSimulatedAnswer(const ZRMUrlRequest&)>;
    using ConnectionObserver = std::function<void()>;

    explicit ZRMSimulatedNetwork(std::shared_ptr<ZRMSimulatedTime> time);

    // Adds to the script of the path, such as "/stat"; each answer serves one request.
    void script(const std::string& path, ZRMSimulatedAnswer answer, std::size_t times = 1);
    // Replaces the handler; an empty one removes it.
    void handle(const std::string& path, Handler handler);
    void handleEverything(Handler handler);

    // Without a connection exchanges under way break with ZRMUrlErrorNetworkConnectionLost and new
    // ones fail at once with ZRMUrlErrorNotConnectedToInternet.
    void setConnected(bool connected);
    [[nodiscard]] bool isConnected() const { return connected_; }

    // Every request started, oldest first, those without a connection included.
    [[nodiscard]] const std::vector<ZRMSimulatedRequestRecord>& requests() const {
        return requests_;
    }
    [[nodiscard]] std::vector<ZRMSimulatedRequestRecord> requestsTo(const std::string& path) const;
    void forgetRequests() { requests_.clear(); }

    static std::string pathOfUrl(const std::string& url);

    // For sessions: records the request and yields its answer.
    ZRMSimulatedAnswer receive(const ZRMUrlRequest& request,
                               const ZRMUrlSessionConfiguration& configuration);
    // For sessions: the observer is called when the connection goes, as long as the token lives.
    std::shared_ptr<void> observeDisconnection(ConnectionObserver observer);

  private:
    std::shared_ptr<ZRMSimulatedTime> time_;
    std::map<std::string, std::deque<ZRMSimulatedAnswer>> scripts_;
    std::map<std::string, Handler> handlers_;
    Handler everything_;
    std::vector<ZRMSimulatedRequestRecord> requests_;
    std::vector<std::weak_ptr<ConnectionObserver>> observers_;
    bool connected_ = true;
};
