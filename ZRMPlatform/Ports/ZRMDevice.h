// What the device says of itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// May be called from any thread; never blocks.
class ZRMDevice {
  public:
    virtual ~ZRMDevice() = default;
    [[nodiscard]] virtual std::string systemName() const = 0;
    [[nodiscard]] virtual std::optional<std::string> systemVersion() const = 0;
    // As the user named it; absent when there is no name.
    [[nodiscard]] virtual std::optional<std::string> name() const = 0;
    // The kind of device in the user's language.
    [[nodiscard]] virtual std::optional<std::string> localizedModel() const = 0;
    // A UUID that is the same for all applications of one maker on this device, and for no others.
    [[nodiscard]] virtual std::optional<std::string> identifierForVendor() const = 0;
    [[nodiscard]] virtual bool isMultitaskingSupported() const = 0;
    // The machine field of uname, such as "iPhone10,3" or "x86_64".
    [[nodiscard]] virtual std::string hardwareIdentifier() const = 0;
};

// The link-level address of a network interface, read in the steps the kernel asks for: its index,
// the length of its record, the record.
class ZRMLinkLayer {
  public:
    virtual ~ZRMLinkLayer() = default;
    // 0 when there is no such interface. The name is the library's ("en0" is the first fixed or
    // wireless interface); the port maps it to the system's.
    [[nodiscard]] virtual std::uint32_t interfaceIndex(const std::string& name) const = 0;
    // Bytes that the record takes; absent when the kernel does not answer.
    [[nodiscard]] virtual std::optional<std::size_t> recordLength(std::uint32_t index) const = 0;
    // The record: one byte of name length, the name, then the 6 bytes of the address.
    virtual bool readRecord(std::uint32_t index, std::span<std::uint8_t> record) const = 0;
};

class ZRMLocaleSource {
  public:
    virtual ~ZRMLocaleSource() = default;
    // IANA name, such as "Europe/Vienna".
    [[nodiscard]] virtual std::string timeZoneIdentifier() const = 0;
    // The current one, in ICU form, such as "de_AT".
    [[nodiscard]] virtual std::string localeIdentifier() const = 0;
    // What the system falls back to where nobody chose a locale.
    [[nodiscard]] virtual std::string systemLocaleIdentifier() const = 0;
    // BCP 47 tags, the most preferred first.
    [[nodiscard]] virtual std::vector<std::string> preferredLanguages() const = 0;
};

class ZRMProcessEnvironment {
  public:
    virtual ~ZRMProcessEnvironment() = default;
    [[nodiscard]] virtual std::optional<std::string> variable(const std::string& name) const = 0;
};
