// What goes wrong on a simulated disk, and when.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

enum class ZRMSimulatedDiskOperation {
    Open,
    Create,
    Read,
    Write,
    Truncate,
    Synchronize,
    Remove,
    Move,
    MakeDirectory,
    Inspect,  // existence, creation date
    Mark,     // backup exclusion
};

// A rule: operations that match it fail.
struct ZRMSimulatedDiskFault {
    // Any operation when absent.
    std::optional<ZRMSimulatedDiskOperation> operation = {};
    // '*' stands for any text, slashes included.
    std::string pathPattern = "*";
    int errorNumber = 5;  // EIO
    // Matching operations that still succeed before the first failure.
    std::uint64_t skip = 0;
    // Failures until the rule is spent.
    std::uint64_t times = std::numeric_limits<std::uint64_t>::max();
};

// Counts the disk's operations and decides the fate of each. One thread.
class ZRMSimulatedDiskFaults {
  public:
    using Hook = std::function<void(std::uint64_t number, ZRMSimulatedDiskOperation operation,
                                    const std::string& path)>;

    void add(ZRMSimulatedDiskFault fault) { rules_.push_back(std::move(fault)); }
    void clear() { rules_.clear(); }

    // The operation of that number (counted from 1 over the device's life) fails with the error.
    void failOperation(std::uint64_t number, int errorNumber);
    // Operations asked for so far.
    [[nodiscard]] std::uint64_t operationCount() const { return count_; }
    // Called before each operation takes effect; an empty one removes it.
    void setHook(Hook hook) { hook_ = std::move(hook); }

    // For the disk: counts the operation, calls the hook, and yields 0 or the error it fails with.
    int judge(ZRMSimulatedDiskOperation operation, const std::string& path);

    static bool matches(std::string_view pattern, std::string_view path);

  private:
    struct NumberedFault {
        std::uint64_t number;
        int errorNumber;
    };

    std::vector<ZRMSimulatedDiskFault> rules_;
    std::vector<NumberedFault> numbered_;
    Hook hook_;
    std::uint64_t count_ = 0;
};
