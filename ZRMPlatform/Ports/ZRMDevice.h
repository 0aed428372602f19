// What the device says of itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

// May be called from any thread; never blocks.
class ZRMDevice {
  public:
    virtual ~ZRMDevice() = default;
    [[nodiscard]] virtual std::string systemName() const = 0;
    [[nodiscard]] virtual std::optional<std::string> systemVersion() const = 0;
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
    // ICU form, such as "de_AT".
    [[nodiscard]] virtual std::string localeIdentifier() const = 0;
};

class ZRMLocationAuthorization {
  public:
    virtual ~ZRMLocationAuthorization() = default;
    // 0 not determined, 1 restricted, 2 denied, 3 always, 4 when in use.
    [[nodiscard]] virtual int status() const = 0;
};

class ZRMProcessEnvironment {
  public:
    virtual ~ZRMProcessEnvironment() = default;
    [[nodiscard]] virtual std::optional<std::string> variable(const std::string& name) const = 0;
};
