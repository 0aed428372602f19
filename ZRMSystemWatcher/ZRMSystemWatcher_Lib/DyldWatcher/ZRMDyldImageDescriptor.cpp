#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldImageDescriptor.h"

#include <array>
#include <cstdio>
#include <utility>

ZRMDyldImageDescriptor::ZRMDyldImageDescriptor(std::string name, std::uint64_t vmaddr)
    : name_(std::move(name)), vmaddr_(vmaddr) {}

std::string ZRMDyldImageDescriptor::description() const {
    std::array<char, 2 + 2 * sizeof(void*) + 1> address{};
    std::snprintf(address.data(), address.size(), "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(this)));
    return std::string("<ZRMDyldImageDescriptor: ") + address.data() + "> { name = " + name_ + " }";
}
