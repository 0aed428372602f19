// Whose application it is.
#pragma once

#include <string>

// A value.
class ZRMIdsSettings {
  public:
    ZRMIdsSettings() = default;
    explicit ZRMIdsSettings(std::string clientId) : clientId_(std::move(clientId)) {}

    // The customer identifier.
    [[nodiscard]] const std::string& clientId() const { return clientId_; }
    void setClientId(std::string clientId) { clientId_ = std::move(clientId); }

    friend bool operator==(const ZRMIdsSettings&, const ZRMIdsSettings&) = default;

  private:
    std::string clientId_;
};
