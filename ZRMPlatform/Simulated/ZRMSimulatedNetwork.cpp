#include "ZRMPlatform/Simulated/ZRMSimulatedNetwork.h"

#include <algorithm>
#include <iterator>
#include <utility>

ZRMSimulatedAnswer ZRMSimulatedAnswer::withStatus(int status) {
    ZRMSimulatedAnswer answer;
    answer.status = status;
    return answer;
}

ZRMSimulatedAnswer ZRMSimulatedAnswer::withBody(std::string_view body) {
    ZRMSimulatedAnswer answer;
    answer.body = zrm_dataFromText(body);
    return answer;
}

ZRMSimulatedAnswer ZRMSimulatedAnswer::withError(int errorCode) {
    ZRMSimulatedAnswer answer;
    answer.errorCode = errorCode;
    return answer;
}

ZRMSimulatedAnswer ZRMSimulatedAnswer::never() {
    ZRMSimulatedAnswer answer;
    answer.delaySeconds = std::numeric_limits<double>::infinity();
    return answer;
}

ZRMSimulatedAnswer ZRMSimulatedAnswer::after(double seconds) const {
    ZRMSimulatedAnswer answer = *this;
    answer.delaySeconds = seconds;
    return answer;
}

std::string ZRMSimulatedRequestRecord::path() const {
    return ZRMSimulatedNetwork::pathOfUrl(request.url);
}

std::string ZRMSimulatedRequestRecord::bodyText() const {
    return request.body ? zrm_textFromData(*request.body) : std::string();
}

ZRMSimulatedNetwork::ZRMSimulatedNetwork(std::shared_ptr<ZRMSimulatedTime> time)
    : time_(std::move(time)) {}

std::string ZRMSimulatedNetwork::pathOfUrl(const std::string& url) {
    const auto scheme = url.find("://");
    const auto authority = scheme == std::string::npos ? 0 : scheme + 3;
    const auto end = std::min(url.find_first_of("?#", authority), url.size());
    const auto path = std::min(url.find('/', authority), end);
    return path == end ? "/" : url.substr(path, end - path);
}

void ZRMSimulatedNetwork::script(const std::string& path, ZRMSimulatedAnswer answer,
                                 std::size_t times) {
    auto& answers = scripts_[path];
    answers.insert(answers.end(), times, answer);
}

void ZRMSimulatedNetwork::handle(const std::string& path, Handler handler) {
    handlers_[path] = std::move(handler);
}

void ZRMSimulatedNetwork::handleEverything(Handler handler) {
    everything_ = std::move(handler);
}

void ZRMSimulatedNetwork::setConnected(bool connected) {
    connected_ = connected;
    if (connected) {
        return;
    }
    const auto observers = observers_;
    for (const auto& observer : observers) {
        if (const auto living = observer.lock()) {
            (*living)();
        }
    }
}

std::shared_ptr<void> ZRMSimulatedNetwork::observeDisconnection(ConnectionObserver observer) {
    std::erase_if(observers_, [](const auto& entry) { return entry.expired(); });
    auto token = std::make_shared<ConnectionObserver>(std::move(observer));
    observers_.push_back(token);
    return token;
}

std::vector<ZRMSimulatedRequestRecord> ZRMSimulatedNetwork::requestsTo(
    const std::string& path) const {
    std::vector<ZRMSimulatedRequestRecord> found;
    std::ranges::copy_if(requests_, std::back_inserter(found),
                         [&](const auto& record) { return record.path() == path; });
    return found;
}

ZRMSimulatedAnswer ZRMSimulatedNetwork::receive(const ZRMUrlRequest& request,
                                                const ZRMUrlSessionConfiguration& configuration) {
    requests_.push_back({request, configuration, time_->now(), time_->uptimeSeconds()});
    if (!connected_) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorNotConnectedToInternet);
    }
    const std::string path = pathOfUrl(request.url);
    if (auto& answers = scripts_[path]; !answers.empty()) {
        auto answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
    if (const auto found = handlers_.find(path); found != handlers_.end() && found->second) {
        const Handler handler = found->second;
        return handler(request);
    }
    return everything_ ? everything_(request) : ZRMSimulatedAnswer{};
}
