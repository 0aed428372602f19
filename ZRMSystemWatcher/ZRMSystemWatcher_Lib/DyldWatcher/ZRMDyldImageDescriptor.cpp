#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldImageDescriptor.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

ZRMDyldImageDescriptor::ZRMDyldImageDescriptor(std::string name, std::uint64_t vmaddr)
    : name_(std::move(name)), vmaddr_(vmaddr) {}

std::string ZRMDyldImageDescriptor::description() const {
    return "<ZRMDyldImageDescriptor: " + zrm_addressText(this) + "> { name = " + name_ + " }";
}
