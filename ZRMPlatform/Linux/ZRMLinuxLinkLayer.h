// Link-level addresses of the machine's interfaces.
#pragma once

#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"
#include "ZRMPlatform/Ports/ZRMDevice.h"

// Names are those of ZRMLinuxInterfaces::withLibraryName().
class ZRMLinuxLinkLayer : public ZRMLinkLayer {
  public:
    explicit ZRMLinuxLinkLayer(ZRMLinuxInterfaces interfaces);

    [[nodiscard]] std::uint32_t interfaceIndex(const std::string& name) const override;
    [[nodiscard]] std::optional<std::size_t> recordLength(std::uint32_t index) const override;
    bool readRecord(std::uint32_t index, std::span<std::uint8_t> record) const override;

  private:
    [[nodiscard]] std::optional<ZRMLinuxInterface> addressed(std::uint32_t index) const;

    ZRMLinuxInterfaces interfaces_;
};
