// The file of one suite of user defaults, and what is on its way there.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyListFile.h"
#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// A value that was set is held in memory until the file has it; one that cannot be written is held
// for the process's life. May be used from any thread.
class ZRMLinuxDefaultsFile {
  public:
    using Value = std::variant<double, std::string>;

    // The one of that path, for the process's life, so that every handle sees what others set.
    static std::shared_ptr<ZRMLinuxDefaultsFile> at(const std::string& path,
                                                    const std::shared_ptr<ZRMConsoleLog>& console);

    // Writes what any of them still holds. The process does so when it exits.
    static void writeAll();

    ZRMLinuxDefaultsFile(std::string path, std::shared_ptr<ZRMConsoleLog> console);

    // Absent where there is none of that type. Reads the file unless the value is held.
    template <class T>
    [[nodiscard]] std::optional<T> valueForKey(const std::string& key) const {
        const auto value = valueForKey(key);
        const auto* const typed = value ? std::get_if<T>(&*value) : nullptr;
        return typed != nullptr ? std::optional(*typed) : std::nullopt;
    }

    // Never waits for the disk. True asks the caller to have write() called, on another thread;
    // while that is due, further values go along with it.
    [[nodiscard]] bool setValue(const std::string& key, Value value);

    // Blocks on the disk and on other writers. What fails is named on the console and goes along
    // with the next write.
    void write();

  private:
    using Values = std::map<std::string, Value>;

    [[nodiscard]] std::optional<Value> valueForKey(const std::string& key) const;
    [[nodiscard]] Values takeDueValues();

    ZRMLinuxPropertyListFile file_;
    const std::shared_ptr<ZRMConsoleLog> console_;
    // Guards no member: lets one write at a time through, so that none puts an earlier value over a
    // later one.
    ZRMMutex writing_;
    mutable ZRMMutex mutex_;
    Values held_ ZRM_GUARDED_BY(mutex_);
    bool isWriteDue_ ZRM_GUARDED_BY(mutex_) = false;
};
