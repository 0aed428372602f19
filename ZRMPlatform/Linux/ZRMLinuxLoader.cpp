#include "ZRMPlatform/Linux/ZRMLinuxLoader.h"

#include <array>
#include <climits>
#include <cstddef>
#include <functional>
#include <string_view>

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

namespace {

using Visit = std::function<bool(const dl_phdr_info& image)>;  // false ends the walk

void forEachImage(const Visit& visit) {
    dl_iterate_phdr(
        [](dl_phdr_info* image, std::size_t, void* context) {
            return (*static_cast<const Visit*>(context))(*image) ? 0 : 1;
        },
        const_cast<Visit*>(&visit));
}

// The segment that the file's first byte is mapped by; it holds the header.
const ElfW(Phdr) * headerSegment(const dl_phdr_info& image) {
    for (const auto& segment : std::span(image.dlpi_phdr, image.dlpi_phnum)) {
        if (segment.p_type == PT_LOAD && segment.p_offset == 0) {
            return &segment;
        }
    }
    return nullptr;
}

std::uint64_t headerAddress(const dl_phdr_info& image) {
    const auto* const segment = headerSegment(image);
    return image.dlpi_addr + (segment != nullptr ? segment->p_vaddr : 0);
}

const std::string& executablePath() {
    static const auto* const path = [] {
        std::array<char, PATH_MAX> text{};
        const auto length = readlink("/proc/self/exe", text.data(), text.size());
        return new std::string(text.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    }();
    return *path;
}

std::string imageName(const dl_phdr_info& image) {
    // The main executable's name is empty.
    const std::string_view name = image.dlpi_name != nullptr ? image.dlpi_name : "";
    return name.empty() ? executablePath() : std::string(name);
}

void visitImageAtIndex(std::uint32_t index, const std::function<void(const dl_phdr_info&)>& visit) {
    std::uint32_t at = 0;
    forEachImage([&](const dl_phdr_info& image) {
        if (at++ != index) {
            return true;
        }
        visit(image);
        return false;
    });
}

std::vector<std::uint64_t> loadedHeaderAddresses() {
    std::vector<std::uint64_t> addresses;
    forEachImage([&](const dl_phdr_info& image) {
        addresses.push_back(headerAddress(image));
        return true;
    });
    return addresses;
}

}  // namespace

std::shared_ptr<ZRMLoader> zrm_processLoader() {
    static auto* const loader = new std::shared_ptr<ZRMLoader>(std::make_shared<ZRMLinuxLoader>());
    return *loader;
}

std::uint32_t ZRMLinuxLoader::imageCount() const {
    std::uint32_t count = 0;
    forEachImage([&](const dl_phdr_info&) {
        ++count;
        return true;
    });
    return count;
}

std::optional<ZRMLoadedImage> ZRMLinuxLoader::imageAtIndex(std::uint32_t index) const {
    std::optional<ZRMLoadedImage> found;
    visitImageAtIndex(index, [&](const dl_phdr_info& image) {
        found = ZRMLoadedImage{imageName(image), headerAddress(image)};
    });
    return found;
}

std::span<const std::uint8_t> ZRMLinuxLoader::mappedBytesAtIndex(std::uint32_t index) const {
    std::span<const std::uint8_t> bytes;
    visitImageAtIndex(index, [&](const dl_phdr_info& image) {
        const auto* const segment = headerSegment(image);
        if (segment != nullptr && (segment->p_flags & PF_R) != 0) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader tells addresses as numbers.
            const auto* const begin = reinterpret_cast<const std::uint8_t*>(headerAddress(image));
            bytes = {begin, segment->p_filesz};
        }
    });
    return bytes;
}

std::optional<std::string> ZRMLinuxLoader::fileForAddress(std::uint64_t address) const {
    std::optional<std::string> file;
    forEachImage([&](const dl_phdr_info& image) {
        for (const auto& segment : std::span(image.dlpi_phdr, image.dlpi_phnum)) {
            const auto begin = image.dlpi_addr + segment.p_vaddr;
            if (segment.p_type == PT_LOAD && address >= begin &&
                address - begin < segment.p_memsz) {
                file = imageName(image);
                return false;
            }
        }
        return true;
    });
    return file;
}

void ZRMLinuxLoader::registerAddImageCallback(AddImageCallback callback) {
    const auto loaded = loadedHeaderAddresses();
    const ZRMLockGuard lock(mutex_);
    tell(listeners_.emplace_back(Listener{std::move(callback), {}}), loaded);
}

void ZRMLinuxLoader::noticeAddedImages() {
    const auto loaded = loadedHeaderAddresses();
    const ZRMLockGuard lock(mutex_);
    for (auto& listener : listeners_) {
        tell(listener, loaded);
    }
}

void ZRMLinuxLoader::tell(Listener& listener, const std::vector<std::uint64_t>& loaded) {
    for (const auto address : loaded) {
        if (!listener.told.contains(address)) {
            listener.callback(address, 0);
        }
    }
    // One that was unloaded is forgotten, so that it counts as new when it is loaded again.
    listener.told = {loaded.begin(), loaded.end()};
}
