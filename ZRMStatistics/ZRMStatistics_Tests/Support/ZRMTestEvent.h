// An event made of whatever a test wants it to be.
#pragma once

#include <string>
#include <utility>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsEvent.h"

class ZRMTestEvent final : public ZRMStatisticsEvent {
  public:
    // {"TEST": {"name": …}}
    explicit ZRMTestEvent(const std::string& name) {
        parameters_["TEST"] = ZRMDictionary{{"name", name}};
    }
    explicit ZRMTestEvent(ZRMDictionary parameters) : parameters_(std::move(parameters)) {}

    [[nodiscard]] ZRMDictionary parameters() const override { return parameters_; }

  private:
    ZRMDictionary parameters_;
};

// The name that a ZRMTestEvent's upload body carries; throws where there is none.
std::string zrm_testEventName(const ZRMData& body);
