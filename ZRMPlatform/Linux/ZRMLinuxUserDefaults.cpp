#include "ZRMPlatform/Linux/ZRMLinuxUserDefaults.h"

#include <algorithm>
#include <array>
#include <map>
#include <variant>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyListFile.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

using StoredValue = std::variant<double, std::string>;
using StoredValues = std::map<std::string, StoredValue>;

// What could not be written, by file, for the process's life.
struct Unwritten {
    ZRMMutex mutex;
    std::map<std::string, StoredValues> byPath ZRM_GUARDED_BY(mutex);
};

Unwritten& unwritten() {
    static auto* const values = new Unwritten;
    return *values;
}

// libplist takes keys and strings that end at the first NUL.
bool canBeWritten(const std::string& key, const StoredValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return key.find('\0') == std::string::npos &&
           (text == nullptr || text->find('\0') == std::string::npos);
}

plist_t nodeOf(const StoredValue& value) {
    if (const auto* const number = std::get_if<double>(&value)) {
        return plist_new_real(*number);
    }
    return plist_new_string(std::get<std::string>(value).c_str());
}

std::optional<double> read(plist_t node, double*) {
    return zrm_propertyListReal(node);
}

std::optional<std::string> read(plist_t node, std::string*) {
    return zrm_propertyListString(node);
}

class Suite : public ZRMUserDefaultsSuite {
  public:
    Suite(std::string path, std::shared_ptr<ZRMConsoleLog> console)
        : file_(std::move(path), console, ZRMLinuxPropertyListFile::Durability::System),
          console_(std::move(console)) {}

    [[nodiscard]] std::optional<double> doubleForKey(const std::string& key) const override {
        return valueOf<double>(key);
    }
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const override {
        return valueOf<std::string>(key);
    }
    void setDouble(const std::string& key, double value) override { set(key, value); }
    void setString(const std::string& key, const std::string& value) override { set(key, value); }

  private:
    template <class T>
    std::optional<T> valueOf(const std::string& key) const {
        auto& kept = unwritten();
        const ZRMLockGuard lock(kept.mutex);
        if (const auto values = kept.byPath.find(file_.path()); values != kept.byPath.end()) {
            if (const auto found = values->second.find(key); found != values->second.end()) {
                const auto* const value = std::get_if<T>(&found->second);
                return value != nullptr ? std::optional(*value) : std::nullopt;
            }
        }
        const auto list = file_.read();
        if (!list || key.find('\0') != std::string::npos) {
            return std::nullopt;
        }
        return read(zrm_propertyListEntry(list.value().get(), key.c_str()),
                    static_cast<T*>(nullptr));
    }

    // Takes along what earlier writes had to leave in memory.
    void set(const std::string& key, StoredValue value) {
        auto& kept = unwritten();
        const ZRMLockGuard lock(kept.mutex);
        auto& values = kept.byPath[file_.path()];
        values.insert_or_assign(key, std::move(value));
        const auto failure = file_.update([&values](plist_t dictionary) {
            for (const auto& [name, held] : values) {
                if (canBeWritten(name, held)) {
                    plist_dict_set_item(dictionary, name.c_str(), nodeOf(held));
                }
            }
            return true;
        });
        if (failure) {
            console_->write("Cannot write the user defaults: " + failure->localizedDescription() +
                            "\n");
            return;
        }
        std::erase_if(values,
                      [](const auto& entry) { return canBeWritten(entry.first, entry.second); });
        if (values.contains(key)) {
            console_->write("Cannot write a value that holds a NUL to the user defaults " +
                            file_.path() + "\n");
        }
        if (values.empty()) {
            kept.byPath.erase(file_.path());
        }
    }

    ZRMLinuxPropertyListFile file_;
    std::shared_ptr<ZRMConsoleLog> console_;
};

std::string fileNameOf(const std::string& suite) {
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    std::string name;
    for (const char character : suite) {
        const bool isPlain = (character >= 'a' && character <= 'z') ||
                             (character >= 'A' && character <= 'Z') ||
                             (character >= '0' && character <= '9') || character == '.' ||
                             character == '-' || character == '_';
        if (isPlain) {
            name += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            name += {'%', kHexDigits[byte >> 4U], kHexDigits[byte & 0x0FU]};
        }
    }
    return name + ".plist";
}

}  // namespace

ZRMLinuxUserDefaults::ZRMLinuxUserDefaults(std::string directory,
                                           std::shared_ptr<ZRMConsoleLog> console)
    : directory_(std::move(directory)), console_(std::move(console)) {}

std::unique_ptr<ZRMUserDefaultsSuite> ZRMLinuxUserDefaults::openSuite(const std::string& name) {
    return std::make_unique<Suite>(directory_ + "/" + fileNameOf(name), console_);
}
