// A host application that uses the library as others do and measures what it costs.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <boost/json/object.hpp>

#include "Benchmarks/Host/ZRMTimedMainQueue.h"
#include "ZRMMobileKit/ZRMMobileService.h"

// One process, one host. Failures throw std::exception.
class ZRMBenchHost {
  public:
    // `options`: "home", "bundle", "url", "resolve" (an array) and, where needed, "resources", "ca"
    // and "timesMainQueue".
    explicit ZRMBenchHost(const boost::json::object& options);

    [[nodiscard]] ZRMMobileService& service() { return *service_; }
    // Null unless the options ask for it.
    [[nodiscard]] ZRMTimedMainQueue* mainQueue() { return mainQueue_.get(); }

    // Waits for the handler. Seconds from the call to the handler.
    double activate();
    // Waits until every report is in the store.
    void awaitStored();
    // Waits until every report was answered.
    void awaitAnswered();
    // Reports one login, of a user with this number.
    void login(std::size_t number);

  private:
    std::string userId_;
    std::string userName_;
    std::shared_ptr<ZRMTimedMainQueue> mainQueue_;
    std::shared_ptr<ZRMMobileService> service_;
};

// What the process has in memory, in KiB: a line of /proc/self/status such as "VmRSS".
double zrm_memoryKiB(const std::string& line);
