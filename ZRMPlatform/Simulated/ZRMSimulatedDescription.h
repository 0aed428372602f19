// What a simulated device says of itself, as tests set it. Changes are seen at once.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMDevice.h"

class ZRMSimulatedDeviceDescription final : public ZRMDevice {
  public:
    [[nodiscard]] std::string systemName() const override { return systemName_; }
    [[nodiscard]] std::optional<std::string> systemVersion() const override {
        return systemVersion_;
    }
    [[nodiscard]] std::optional<std::string> name() const override { return name_; }
    [[nodiscard]] std::optional<std::string> localizedModel() const override {
        return localizedModel_;
    }
    [[nodiscard]] std::optional<std::string> identifierForVendor() const override {
        return identifierForVendor_;
    }
    [[nodiscard]] bool isMultitaskingSupported() const override { return multitasking_; }
    [[nodiscard]] std::string hardwareIdentifier() const override { return hardwareIdentifier_; }

    void setSystemName(std::string name) { systemName_ = std::move(name); }
    void setSystemVersion(std::optional<std::string> version) {
        systemVersion_ = std::move(version);
    }
    void setName(std::optional<std::string> name) { name_ = std::move(name); }
    void setLocalizedModel(std::optional<std::string> model) { localizedModel_ = std::move(model); }
    void setIdentifierForVendor(std::optional<std::string> uuid) {
        identifierForVendor_ = std::move(uuid);
    }
    void setMultitaskingSupported(bool supported) { multitasking_ = supported; }
    void setHardwareIdentifier(std::string identifier) {
        hardwareIdentifier_ = std::move(identifier);
    }

  private:
    std::string systemName_ = "SimulatedOS";
    std::optional<std::string> systemVersion_ = "17.1";
    std::optional<std::string> name_ = "Ada's phone";
    std::optional<std::string> localizedModel_ = "Telefon";
    std::optional<std::string> identifierForVendor_ = "6F1C2D3E-4A5B-4C6D-8E7F-0A1B2C3D4E5F";
    bool multitasking_ = true;
    std::string hardwareIdentifier_ = "iPhone10,3";
};

// One interface, "en0". Each of the three steps can be made to fail.
class ZRMSimulatedLinkLayer final : public ZRMLinkLayer {
  public:
    enum class Step { None, Index, Length, Record };

    [[nodiscard]] std::uint32_t interfaceIndex(const std::string& name) const override;
    [[nodiscard]] std::optional<std::size_t> recordLength(std::uint32_t index) const override;
    bool readRecord(std::uint32_t index, std::span<std::uint8_t> record) const override;

    void setAddress(std::array<std::uint8_t, 6> address) { address_ = address; }
    void failAt(Step step) { failing_ = step; }

  private:
    static constexpr std::uint32_t kIndex = 4;
    static constexpr std::string_view kName = "en0";

    std::array<std::uint8_t, 6> address_ = {0x02, 0x00, 0x5e, 0x10, 0x20, 0x30};
    Step failing_ = Step::None;
};

class ZRMSimulatedLocaleSource final : public ZRMLocaleSource {
  public:
    [[nodiscard]] std::string timeZoneIdentifier() const override { return timeZone_; }
    [[nodiscard]] std::string localeIdentifier() const override { return locale_; }
    [[nodiscard]] std::string systemLocaleIdentifier() const override { return systemLocale_; }
    [[nodiscard]] std::vector<std::string> preferredLanguages() const override {
        return languages_;
    }

    void setTimeZoneIdentifier(std::string identifier) { timeZone_ = std::move(identifier); }
    void setLocaleIdentifier(std::string identifier) { locale_ = std::move(identifier); }
    void setSystemLocaleIdentifier(std::string identifier) {
        systemLocale_ = std::move(identifier);
    }
    void setPreferredLanguages(std::vector<std::string> tags) { languages_ = std::move(tags); }

  private:
    std::string timeZone_ = "Europe/Vienna";
    std::string locale_ = "de_AT";
    std::string systemLocale_ = "en_US_POSIX";
    std::vector<std::string> languages_ = {"de-AT", "en"};
};

class ZRMSimulatedProcessEnvironment final : public ZRMProcessEnvironment {
  public:
    [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override;
    // An absent value removes the variable.
    void setVariable(const std::string& name, std::optional<std::string> value);

  private:
    std::map<std::string, std::string> variables_;
};
