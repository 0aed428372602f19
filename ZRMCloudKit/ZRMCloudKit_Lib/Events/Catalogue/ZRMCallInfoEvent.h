// Calls under way, and which of them gave reason to report.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"
#include "ZRMPlatform/Ports/Values/ZRMCall.h"

enum ZRMCallInfoStage : std::uint64_t {
    ZRMCallInfoStageInitial = 0,  // the first report of the current calls
    ZRMCallInfoStageChanged = 1,  // a connected call changed
    ZRMCallInfoStageActive = 2,   // a connected call is still active
};

class ZRMCallInfoEvent final : public ZRMTableEvent<ZRMCallInfoEvent> {
  public:
    static ZRMEventTable<ZRMCallInfoEvent> table();
    // The members of one call's object.
    static std::span<const ZRMEventField<ZRMCall>> callFields();

    ZRMCallInfoEvent(ZRMCallInfoStage stage, std::optional<ZRMCall> changedCall,
                     std::vector<ZRMCall> calls,
                     std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] std::uint64_t stage() const { return stage_; }
    [[nodiscard]] const std::optional<ZRMCall>& changedCall() const { return changedCall_; }
    [[nodiscard]] const std::vector<ZRMCall>& calls() const { return calls_; }

    [[nodiscard]] std::optional<ZRMDictionary> changedCallBody() const;
    [[nodiscard]] std::vector<ZRMDictionary> callBodies() const;

  private:
    ZRMCallInfoStage stage_;
    std::optional<ZRMCall> changedCall_;
    std::vector<ZRMCall> calls_;
};
