// A user logged in, or failed to.
#pragma once

#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMUserLoginEvent final : public ZRMTableEvent<ZRMUserLoginEvent> {
  public:
    static ZRMEventTable<ZRMUserLoginEvent> table();

    ZRMUserLoginEvent(std::string userName, std::string result, std::string userId,
                      std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::string& userName() const { return userName_; }
    [[nodiscard]] const std::string& result() const { return result_; }
    [[nodiscard]] const std::string& userId() const { return userId_; }

    // Absent when the name is empty: such a name is not reported.
    [[nodiscard]] std::optional<std::string> reportedUserName() const;

  private:
    std::string userName_;
    std::string result_;
    std::string userId_;
};
