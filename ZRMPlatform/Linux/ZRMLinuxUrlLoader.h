// The thread on which all exchanges of the process go over the network.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include <curl/curl.h>

#include "ZRMPlatform/Linux/ZRMLinuxUrlSockets.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlTransfer.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// Made with the first exchange; lives as long as the process and is not waited for at its exit.
class ZRMLinuxUrlLoader {
  public:
    static ZRMLinuxUrlLoader& shared();

    // From any thread. The job's completion is posted once, by its end.
    void start(std::shared_ptr<ZRMLinuxUrlJob> job);
    // From any thread; a job that has ended stays as it is.
    void cancel(std::shared_ptr<ZRMLinuxUrlJob> job);

  private:
    struct Command {
        std::shared_ptr<ZRMLinuxUrlJob> job;
        bool isCancel;
    };
    using Transfers =
        std::unordered_map<const ZRMLinuxUrlJob*, std::unique_ptr<ZRMLinuxUrlTransfer>>;

    ZRMLinuxUrlLoader();

    void command(Command command);
    [[noreturn]] void serve();
    void obey();
    void begin(std::shared_ptr<ZRMLinuxUrlJob> job);
    void takeVerdicts();
    void giveUpLateTransfers();
    [[nodiscard]] std::chrono::milliseconds timeToNextDeadline() const;
    // Lets go of the transfer and its handle; the connection is kept for the next one.
    void drop(Transfers::iterator found);

    ZRMMutex mutex_;
    std::vector<Command> commands_ ZRM_GUARDED_BY(mutex_);
    bool isStarted_ ZRM_GUARDED_BY(mutex_) = false;

    CURLM* multi_;
    std::unique_ptr<ZRMLinuxUrlSockets> sockets_;
    CURLSH* share_;
    // The rest belongs to the network thread.
    Transfers transfers_;
};
