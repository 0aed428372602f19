#include "ZRMPlatform/Linux/ZRMLinuxProcessInformation.h"

#include <charconv>
#include <filesystem>

#include <sys/utsname.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

// Cuts a number off the front of the text; absent when there is none, or a greater one than fits.
template <class Number>
std::optional<Number> takeNumber(std::string_view& text) {
    Number number = 0;
    const auto* const end = text.data() + text.size();
    const auto [behind, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(behind - text.data()));
    return number;
}

bool takeCharacter(std::string_view& text, char character) {
    const bool isThere = text.starts_with(character);
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
}

// Of a list such as "0-3,6\n"; 0 when it is anything else.
std::uint32_t countInList(std::string_view text) {
    constexpr std::uint32_t kGreatestNumber = 0xFFFF;
    std::uint32_t count = 0;
    do {
        const auto first = takeNumber<std::uint32_t>(text);
        const auto last = takeCharacter(text, '-') ? takeNumber<std::uint32_t>(text) : first;
        if (!first || !last || *last < *first || *last > kGreatestNumber) {
            return 0;
        }
        count += *last - *first + 1;
    } while (takeCharacter(text, ','));
    takeCharacter(text, '\n');
    return text.empty() ? count : 0;
}

std::uint32_t processorsIn(const std::string& path, int nameOfSetting) {
    const auto count = countInList(zrm_smallFileText(path).value_or(""));
    if (count != 0) {
        return count;
    }
    const auto configured = sysconf(nameOfSetting);
    return configured > 0 ? static_cast<std::uint32_t>(configured) : 1;
}

std::uint64_t memoryOfLibrary() {
    const auto pages = sysconf(_SC_PHYS_PAGES);
    const auto size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0
               ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size)
               : 0;
}

}  // namespace

ZRMOperatingSystemVersion zrm_operatingSystemVersion(std::string_view release) {
    ZRMOperatingSystemVersion version;
    for (long* const part : {&version.major, &version.minor, &version.patch}) {
        // A number only: from_chars would take a sign, too.
        const bool isNumber = !release.empty() && release.front() >= '0' && release.front() <= '9';
        const auto number = isNumber ? takeNumber<long>(release) : std::nullopt;
        if (!number) {
            break;
        }
        *part = *number;
        if (!takeCharacter(release, '.')) {
            break;
        }
    }
    return version;
}

ZRMLinuxProcessInformation::ZRMLinuxProcessInformation(std::string procDirectory,
                                                       std::string sysDirectory)
    : procDirectory_(std::move(procDirectory)), sysDirectory_(std::move(sysDirectory)) {}

std::string ZRMLinuxProcessInformation::processName() const {
    constexpr std::string_view kDeleted = " (deleted)";
    std::error_code failure;
    auto executable = std::filesystem::read_symlink(procDirectory_ + "/self/exe", failure).string();
    // The kernel says so of an executable that was replaced while it runs.
    if (executable.ends_with(kDeleted)) {
        executable.resize(executable.size() - kDeleted.size());
    }
    const auto name =
        zrm_systemName(std::string_view(executable).substr(executable.find_last_of('/') + 1));
    return name ? *name : zrm_systemNameInFile(procDirectory_ + "/self/comm").value_or("");
}

std::uint32_t ZRMLinuxProcessInformation::processorCount() const {
    return processorsIn(sysDirectory_ + "/devices/system/cpu/present", _SC_NPROCESSORS_CONF);
}

std::uint32_t ZRMLinuxProcessInformation::activeProcessorCount() const {
    return processorsIn(sysDirectory_ + "/devices/system/cpu/online", _SC_NPROCESSORS_ONLN);
}

std::uint64_t ZRMLinuxProcessInformation::physicalMemory() const {
    constexpr std::string_view kKey = "MemTotal:";
    constexpr std::uint64_t kMostKilobytes = UINT64_MAX / 1024;
    const auto text = zrm_smallFileText(procDirectory_ + "/meminfo").value_or("");
    const auto found = text.find(kKey);
    if (found != std::string::npos) {
        auto rest = std::string_view(text).substr(found + kKey.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
        const auto kilobytes = takeNumber<std::uint64_t>(rest);
        if (kilobytes && *kilobytes != 0 && *kilobytes <= kMostKilobytes &&
            rest.starts_with(" kB\n")) {
            return *kilobytes * 1024;
        }
    }
    return memoryOfLibrary();
}

ZRMOperatingSystemVersion ZRMLinuxProcessInformation::operatingSystemVersion() const {
    utsname names{};
    return zrm_operatingSystemVersion(uname(&names) == 0 ? names.release : "");
}
