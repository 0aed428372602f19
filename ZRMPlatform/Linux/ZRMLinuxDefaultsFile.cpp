#include "ZRMPlatform/Linux/ZRMLinuxDefaultsFile.h"

#include <atomic>
#include <cstdlib>
#include <utility>
#include <vector>

#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

namespace {

// Never destroyed: writes may be under way while the process exits.
struct Files {
    ZRMMutex mutex;
    std::map<std::string, std::shared_ptr<ZRMLinuxDefaultsFile>> byPath ZRM_GUARDED_BY(mutex);
};

// The process that set a value last.
std::atomic<pid_t> setter{0};

// A child that was forked and set nothing has nothing to write, and may find locks that no thread
// of its own holds.
void writeAtExit() {
    if (setter == ::getpid()) {
        ZRMLinuxDefaultsFile::writeAll();
    }
}

Files& files() {
    static auto* const all = [] {
        static_cast<void>(std::atexit(&writeAtExit));
        return new Files;
    }();
    return *all;
}

bool holdsNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

// libplist takes keys and strings that end at the first NUL.
bool canBeWritten(const std::string& key, const ZRMLinuxDefaultsFile::Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return !holdsNul(key) && (text == nullptr || !holdsNul(*text));
}

plist_t nodeOf(const ZRMLinuxDefaultsFile::Value& value) {
    if (const auto* const number = std::get_if<double>(&value)) {
        return plist_new_real(*number);
    }
    return plist_new_string(std::get<std::string>(value).c_str());
}

std::optional<ZRMLinuxDefaultsFile::Value> valueOf(plist_t node) {
    if (auto number = zrm_propertyListReal(node)) {
        return *number;
    }
    if (auto text = zrm_propertyListString(node)) {
        return std::move(*text);
    }
    return std::nullopt;
}

}  // namespace

std::shared_ptr<ZRMLinuxDefaultsFile> ZRMLinuxDefaultsFile::at(
    const std::string& path, const std::shared_ptr<ZRMConsoleLog>& console) {
    auto& all = files();
    const ZRMLockGuard lock(all.mutex);
    auto& file = all.byPath[path];
    if (!file) {
        file = std::make_shared<ZRMLinuxDefaultsFile>(path, console);
    }
    return file;
}

void ZRMLinuxDefaultsFile::writeAll() {
    std::vector<std::shared_ptr<ZRMLinuxDefaultsFile>> every;
    {
        auto& all = files();
        const ZRMLockGuard lock(all.mutex);
        for (const auto& entry : all.byPath) {
            every.push_back(entry.second);
        }
    }
    for (const auto& file : every) {
        file->write();
    }
}

ZRMLinuxDefaultsFile::ZRMLinuxDefaultsFile(std::string path, std::shared_ptr<ZRMConsoleLog> console)
    : file_(std::move(path), console, ZRMLinuxPropertyListFile::Durability::System),
      console_(std::move(console)) {}

std::optional<ZRMLinuxDefaultsFile::Value> ZRMLinuxDefaultsFile::valueForKey(
    const std::string& key) const {
    {
        const ZRMLockGuard lock(mutex_);
        if (const auto found = held_.find(key); found != held_.end()) {
            return found->second;
        }
    }
    const auto list = file_.read();
    if (!list || holdsNul(key)) {
        return std::nullopt;
    }
    return valueOf(zrm_propertyListEntry(list.value().get(), key.c_str()));
}

bool ZRMLinuxDefaultsFile::setValue(const std::string& key, Value value) {
    const bool isWritable = canBeWritten(key, value);
    if (!isWritable) {
        console_->write("Cannot write a value that holds a NUL to the user defaults " +
                        file_.path() + "\n");
    }
    setter = ::getpid();
    const ZRMLockGuard lock(mutex_);
    held_.insert_or_assign(key, std::move(value));
    return isWritable && !std::exchange(isWriteDue_, true);
}

ZRMLinuxDefaultsFile::Values ZRMLinuxDefaultsFile::takeDueValues() {
    const ZRMLockGuard lock(mutex_);
    isWriteDue_ = false;
    auto values = held_;
    std::erase_if(values,
                  [](const auto& entry) { return !canBeWritten(entry.first, entry.second); });
    return values;
}

void ZRMLinuxDefaultsFile::write() {
    const ZRMLockGuard oneAtATime(writing_);
    const auto values = takeDueValues();
    if (values.empty()) {
        return;
    }
    const auto failure = file_.update([&values](plist_t dictionary) {
        for (const auto& [key, value] : values) {
            plist_dict_set_item(dictionary, key.c_str(), nodeOf(value));
        }
        return true;
    });
    if (failure) {
        console_->write("Cannot write the user defaults: " + failure->localizedDescription() +
                        "\n");
        return;
    }
    const ZRMLockGuard lock(mutex_);
    for (const auto& entry : values) {
        // One that was set meanwhile goes with the next write.
        if (const auto found = held_.find(entry.first);
            found != held_.end() && found->second == entry.second) {
            held_.erase(found);
        }
    }
}
