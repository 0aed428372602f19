// Property lists in memory, over libplist.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>

#include <plist/plist.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

struct ZRMLinuxPropertyListFree {
    void operator()(plist_t node) const { plist_free(node); }
};
// Owns a root node with all below it.
using ZRMLinuxPropertyList =
    std::unique_ptr<std::remove_pointer_t<plist_t>, ZRMLinuxPropertyListFree>;

// From XML or binary bytes; null when they are no property list, or one beyond the bounds of
// zrm_isBoundedPropertyList.
ZRMLinuxPropertyList zrm_readPropertyList(std::span<const std::uint8_t> bytes);

// Empty when the list cannot be written.
ZRMData zrm_writeXmlPropertyList(plist_t root);
ZRMData zrm_writeBinaryPropertyList(plist_t root);

// Whether reading the bytes takes memory and stack in proportion: at most 4 MiB of them, 2000
// containers, and for the binary form, where nodes may be shared, 20000 nodes of 16 MiB together
// once each share has its copy. Bytes that are no property list may pass.
bool zrm_isBoundedPropertyList(std::span<const std::uint8_t> bytes);

// The value of a node of that type; absent for any other type and for no node.
std::optional<std::string> zrm_propertyListString(plist_t node);
std::optional<double> zrm_propertyListReal(plist_t node);
std::optional<std::int64_t> zrm_propertyListInteger(plist_t node);
std::optional<bool> zrm_propertyListBoolean(plist_t node);
std::optional<ZRMData> zrm_propertyListData(plist_t node);

// The entry of a dictionary; null when there is none or `dictionary` is no dictionary.
plist_t zrm_propertyListEntry(plist_t dictionary, const char* key);

// Text of any bytes: a string where it is printable ASCII, which every form keeps exactly, else
// data.
plist_t zrm_newPropertyListText(const std::string& text);
std::optional<std::string> zrm_propertyListText(plist_t node);

plist_t zrm_newPropertyListData(const ZRMData& bytes);
