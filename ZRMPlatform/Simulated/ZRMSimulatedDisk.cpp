#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"

ZRMSimulatedDisk::ZRMSimulatedDisk(std::shared_ptr<ZRMSimulatedTime> time,
                                   std::shared_ptr<ZRMRandom> random)
    : time_(std::move(time)), random_(std::move(random)) {
    wipe();
}

void ZRMSimulatedDisk::wipe() {
    nodes_.clear();
    nodes_.emplace("", Node{nullptr, time_->now()});
}

std::string ZRMSimulatedDisk::normalized(std::string_view path) {
    std::string result;
    for (const char character : path) {
        if (character != '/' || result.empty() || result.back() != '/') {
            result += character;
        }
    }
    if (!result.empty() && result.back() == '/') {
        result.pop_back();
    }
    return result;
}

std::string ZRMSimulatedDisk::parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

int ZRMSimulatedDisk::checkParent(const std::string& path) const {
    const auto parent = nodes_.find(parentOf(path));
    if (parent == nodes_.end()) {
        return ENOENT;
    }
    return parent->second.file ? ENOTDIR : 0;
}

std::pair<ZRMSimulatedDisk::Nodes::const_iterator, ZRMSimulatedDisk::Nodes::const_iterator>
ZRMSimulatedDisk::below(const std::string& directory) const {
    // '0' follows '/' in ASCII: everything between starts with the directory and a slash.
    return {nodes_.upper_bound(directory + "/"), nodes_.lower_bound(directory + "0")};
}

std::uint64_t ZRMSimulatedDisk::usedBytes() const {
    std::uint64_t used = 0;
    for (const auto& [path, node] : nodes_) {
        used += node.file ? node.file->bytes().size() : 0;
    }
    return used;
}

bool ZRMSimulatedDisk::fits(const ZRMSimulatedFile& file, std::uint64_t size) const {
    if (size <= file.bytes().size() || capacity_ == std::numeric_limits<std::uint64_t>::max()) {
        return true;
    }
    return usedBytes() + (size - file.bytes().size()) <= capacity_;
}

void ZRMSimulatedDisk::put(const std::string& path, const ZRMData& bytes) {
    const std::string name = normalized(path);
    makeDirectory(parentOf(name));
    auto file = std::make_shared<ZRMSimulatedFile>(time_->now());
    file->write(0, bytes);
    file->synchronize();
    nodes_[name] = Node{std::move(file), time_->now()};
}

void ZRMSimulatedDisk::put(const std::string& path, std::string_view text) {
    put(path, zrm_dataFromText(text));
}

bool ZRMSimulatedDisk::holdsFile(const std::string& path) const {
    const auto found = nodes_.find(normalized(path));
    return found != nodes_.end() && found->second.file;
}

bool ZRMSimulatedDisk::holdsDirectory(const std::string& path) const {
    const auto found = nodes_.find(normalized(path));
    return found != nodes_.end() && !found->second.file;
}

ZRMData ZRMSimulatedDisk::bytesOf(const std::string& path) const {
    const auto found = nodes_.find(normalized(path));
    return found != nodes_.end() && found->second.file ? found->second.file->bytes() : ZRMData();
}

std::vector<std::string> ZRMSimulatedDisk::filesBelow(const std::string& directory) const {
    std::vector<std::string> files;
    const auto [begin, end] = below(normalized(directory));
    for (auto node = begin; node != end; ++node) {
        if (node->second.file) {
            files.push_back(node->first);
        }
    }
    return files;
}

bool ZRMSimulatedDisk::isExcludedFromBackup(const std::string& path) const {
    const auto found = nodes_.find(normalized(path));
    return found != nodes_.end() && found->second.excludedFromBackup;
}

int ZRMSimulatedDisk::makeDirectory(const std::string& path) {
    const std::string name = normalized(path);
    if (const auto found = nodes_.find(name); found != nodes_.end()) {
        return found->second.file ? ENOTDIR : 0;
    }
    if (const int error = makeDirectory(parentOf(name)); error != 0) {
        return error;
    }
    nodes_.emplace(name, Node{nullptr, time_->now()});
    return 0;
}

int ZRMSimulatedDisk::create(const std::string& path, std::shared_ptr<ZRMSimulatedFile>& file) {
    const std::string name = normalized(path);
    if (nodes_.contains(name)) {
        return find(name, file);
    }
    if (const int error = checkParent(name); error != 0) {
        return error;
    }
    file = std::make_shared<ZRMSimulatedFile>(time_->now());
    nodes_.emplace(name, Node{file, time_->now()});
    return 0;
}

int ZRMSimulatedDisk::find(const std::string& path, std::shared_ptr<ZRMSimulatedFile>& file) const {
    const std::string name = normalized(path);
    const auto found = nodes_.find(name);
    if (found == nodes_.end()) {
        const int error = checkParent(name);
        return error != 0 ? error : ENOENT;
    }
    if (!found->second.file) {
        return EISDIR;
    }
    file = found->second.file;
    return 0;
}

int ZRMSimulatedDisk::write(ZRMSimulatedFile& file, std::uint64_t offset,
                            std::span<const std::uint8_t> bytes) {
    if (!fits(file, offset + bytes.size())) {
        return ENOSPC;
    }
    file.write(offset, bytes);
    return 0;
}

int ZRMSimulatedDisk::truncate(ZRMSimulatedFile& file, std::uint64_t size) {
    if (!fits(file, size)) {
        return ENOSPC;
    }
    file.truncate(size);
    return 0;
}

int ZRMSimulatedDisk::remove(const std::string& path) {
    const std::string name = normalized(path);
    if (name.empty()) {
        return EBUSY;
    }
    const auto found = nodes_.find(name);
    if (found == nodes_.end()) {
        return ENOENT;
    }
    const auto [begin, end] = below(name);
    nodes_.erase(begin, end);
    nodes_.erase(found);
    return 0;
}

int ZRMSimulatedDisk::move(const std::string& from, const std::string& to) {
    const std::string source = normalized(from);
    const std::string target = normalized(to);
    const auto found = nodes_.find(source);
    if (found == nodes_.end()) {
        return ENOENT;
    }
    if (const int error = checkParent(target); error != 0) {
        return error;
    }
    if (target == source) {
        return 0;
    }
    if (target.starts_with(source + "/") || source.empty()) {
        return EINVAL;
    }
    if (const auto there = nodes_.find(target); there != nodes_.end()) {
        if (!there->second.file) {
            return found->second.file ? EISDIR : ENOTEMPTY;
        }
        if (!found->second.file) {
            return ENOTDIR;
        }
    }
    Nodes moved;
    const auto [begin, end] = below(source);
    for (auto node = begin; node != end; ++node) {
        moved.emplace(target + node->first.substr(source.size()), node->second);
    }
    nodes_[target] = found->second;
    nodes_.erase(begin, end);
    nodes_.erase(source);
    nodes_.merge(moved);
    return 0;
}

int ZRMSimulatedDisk::created(const std::string& path, ZRMDate& date) const {
    const auto found = nodes_.find(normalized(path));
    if (found == nodes_.end()) {
        return ENOENT;
    }
    date = found->second.file ? found->second.file->created() : found->second.created;
    return 0;
}

int ZRMSimulatedDisk::list(const std::string& path, std::vector<std::string>& names) const {
    const std::string name = normalized(path);
    const auto found = nodes_.find(name);
    if (found == nodes_.end()) {
        return ENOENT;
    }
    if (found->second.file) {
        return ENOTDIR;
    }
    const auto [begin, end] = below(name);
    for (auto node = begin; node != end; ++node) {
        const std::string rest = node->first.substr(name.size() + 1);
        if (rest.find('/') == std::string::npos) {
            names.push_back(rest);
        }
    }
    std::ranges::sort(names);
    return 0;
}

std::optional<std::string> ZRMSimulatedDisk::pathAfter(const std::string& text) const {
    const auto node = nodes_.upper_bound(text);
    return node == nodes_.end() ? std::nullopt : std::optional(node->first);
}

int ZRMSimulatedDisk::excludeFromBackup(const std::string& path) {
    const auto found = nodes_.find(normalized(path));
    if (found == nodes_.end()) {
        return ENOENT;
    }
    found->second.excludedFromBackup = true;
    return 0;
}

void ZRMSimulatedDisk::lose(ZRMSimulatedLoss loss) {
    if (loss == ZRMSimulatedLoss::None) {
        return;
    }
    for (auto& [path, node] : nodes_) {
        if (!node.file || node.file->isSynchronized()) {
            continue;
        }
        if (loss == ZRMSimulatedLoss::All) {
            node.file->loseUnsynced();
        } else {
            node.file->loseSomeUnsynced(*random_);
        }
    }
}
