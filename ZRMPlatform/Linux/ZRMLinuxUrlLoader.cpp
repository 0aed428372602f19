#include "ZRMPlatform/Linux/ZRMLinuxUrlLoader.h"

#include <algorithm>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"
#include "ZRMPlatform/Linux/ZRMLinuxThread.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlErrors.h"

namespace {

constexpr long kIdleConnections = 16;

}  // namespace

ZRMLinuxUrlLoader& ZRMLinuxUrlLoader::shared() {
    static auto* const loader = new ZRMLinuxUrlLoader;
    return *loader;
}

ZRMLinuxUrlLoader::ZRMLinuxUrlLoader() {
    zrm_prepareOpenSSL();
    curl_global_init(CURL_GLOBAL_DEFAULT);
    multi_ = curl_multi_init();
    sockets_ = std::make_unique<ZRMLinuxUrlSockets>(multi_);
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, kIdleConnections);
    share_ = curl_share_init();  // used on one thread, so that it needs no locks
    curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

void ZRMLinuxUrlLoader::start(std::shared_ptr<ZRMLinuxUrlJob> job) {
    command({std::move(job), false});
}

void ZRMLinuxUrlLoader::cancel(std::shared_ptr<ZRMLinuxUrlJob> job) {
    job->isCancelled = true;  // it may not have begun yet
    if (!job->isEnded) {
        command({std::move(job), true});
    }
}

void ZRMLinuxUrlLoader::command(Command command) {
    bool isFirst = false;
    {
        const ZRMLockGuard lock(mutex_);
        isFirst = commands_.empty();
        commands_.push_back(std::move(command));
        if (!isStarted_) {
            isStarted_ = sockets_->open() && zrm_startThread("zrm-network", [this] { serve(); });
        }
    }
    if (isFirst) {
        sockets_->wake();
    }
}

void ZRMLinuxUrlLoader::serve() {
    for (;;) {
        obey();
        sockets_->wait(timeToNextDeadline());
        takeVerdicts();
        giveUpLateTransfers();
    }
}

void ZRMLinuxUrlLoader::obey() {
    std::vector<Command> commands;
    {
        const ZRMLockGuard lock(mutex_);
        commands.swap(commands_);
    }
    for (auto& [job, isCancel] : commands) {
        if (!isCancel) {
            begin(std::move(job));
        } else if (const auto found = transfers_.find(job.get()); found != transfers_.end()) {
            found->second->endWithError(ZRMUrlErrorCancelled);
            drop(found);
        }
    }
}

void ZRMLinuxUrlLoader::begin(std::shared_ptr<ZRMLinuxUrlJob> job) {
    if (job->isCancelled) {
        job->end({{}, std::nullopt, zrm_urlError(ZRMUrlErrorCancelled)});
        return;
    }
    if (auto refusal = zrm_checkUrlRequest(job->request)) {
        job->end({{}, std::nullopt, std::move(*refusal)});
        return;
    }
    // A fresh one each time: libcurl 7.88 keeps a pointer to the last header of a handle's exchange
    // beyond the header's end, and writes there when the next answer begins with a folded line.
    CURL* const handle = curl_easy_init();
    if (handle == nullptr) {
        job->end({{}, std::nullopt, zrm_urlError(ZRMUrlErrorUnknown)});
        return;
    }
    curl_easy_setopt(handle, CURLOPT_SHARE, share_);
    const auto* const key = job.get();
    transfers_[key] = std::make_unique<ZRMLinuxUrlTransfer>(std::move(job), handle);
    curl_multi_add_handle(multi_, handle);
}

void ZRMLinuxUrlLoader::takeVerdicts() {
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        const auto verdict = message->data.result;  // gone with the handle's removal
        const auto* const handle = message->easy_handle;
        const auto found = std::ranges::find_if(
            transfers_, [handle](const auto& entry) { return entry.second->handle() == handle; });
        if (found != transfers_.end()) {
            found->second->endWithVerdict(verdict);
            drop(found);
        }
    }
}

void ZRMLinuxUrlLoader::giveUpLateTransfers() {
    const auto now = ZRMLinuxUrlTransfer::Clock::now();
    for (auto entry = transfers_.begin(); entry != transfers_.end();) {
        const auto current = entry++;
        if (current->second->deadline() <= now) {
            current->second->endWithError(ZRMUrlErrorTimedOut);
            drop(current);
        }
    }
}

std::chrono::milliseconds ZRMLinuxUrlLoader::timeToNextDeadline() const {
    using std::chrono::milliseconds;
    auto wait = milliseconds::max();
    const auto now = ZRMLinuxUrlTransfer::Clock::now();
    for (const auto& entry : transfers_) {
        wait = std::min(wait, std::chrono::ceil<milliseconds>(entry.second->deadline() - now));
    }
    return wait;
}

void ZRMLinuxUrlLoader::drop(Transfers::iterator found) {
    CURL* const handle = found->second->handle();
    curl_multi_remove_handle(multi_, handle);
    curl_easy_cleanup(handle);
    transfers_.erase(found);
}
