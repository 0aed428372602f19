#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

#include <algorithm>

#include <locale.h>

namespace {

// Numbers in XML have a point whatever the host's locale says.
class PlainLocale {
  public:
    PlainLocale() : previous_(uselocale(plain())) {}
    ~PlainLocale() { uselocale(previous_); }
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;

  private:
    static locale_t plain() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t previous_;
};

bool isType(plist_t node, plist_type type) {
    return node != nullptr && plist_get_node_type(node) == type;
}

bool isPrintable(const std::string& text) {
    return std::ranges::all_of(text, [](char byte) { return byte >= ' ' && byte <= '~'; });
}

ZRMData copied(char* bytes, std::uint32_t length, void (*release)(char*)) {
    const std::unique_ptr<char, void (*)(char*)> owned(bytes, release);
    return bytes == nullptr ? ZRMData() : ZRMData(bytes, bytes + length);
}

}  // namespace

ZRMLinuxPropertyList zrm_readPropertyList(std::span<const std::uint8_t> bytes) {
    if (!zrm_isBoundedPropertyList(bytes)) {
        return nullptr;
    }
    const PlainLocale locale;
    // libplist looks at the byte behind the last one.
    const std::string text(bytes.begin(), bytes.end());
    plist_t root = nullptr;
    plist_from_memory(text.c_str(), static_cast<std::uint32_t>(text.size()), &root);
    return ZRMLinuxPropertyList(root);
}

ZRMData zrm_writeXmlPropertyList(plist_t root) {
    const PlainLocale locale;
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root, &bytes, &length);
    return copied(bytes, length, &plist_to_xml_free);
}

ZRMData zrm_writeBinaryPropertyList(plist_t root) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(root, &bytes, &length);
    return copied(bytes, length, &plist_to_bin_free);
}

std::optional<std::string> zrm_propertyListString(plist_t node) {
    if (!isType(node, PLIST_STRING)) {
        return std::nullopt;
    }
    std::uint64_t length = 0;
    const char* const bytes = plist_get_string_ptr(node, &length);
    return bytes == nullptr ? std::string() : std::string(bytes, length);
}

std::optional<double> zrm_propertyListReal(plist_t node) {
    if (!isType(node, PLIST_REAL)) {
        return std::nullopt;
    }
    double value = 0;
    plist_get_real_val(node, &value);
    return value;
}

std::optional<std::int64_t> zrm_propertyListInteger(plist_t node) {
    if (!isType(node, PLIST_UINT)) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    return static_cast<std::int64_t>(value);
}

std::optional<bool> zrm_propertyListBoolean(plist_t node) {
    if (!isType(node, PLIST_BOOLEAN)) {
        return std::nullopt;
    }
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

std::optional<ZRMData> zrm_propertyListData(plist_t node) {
    if (!isType(node, PLIST_DATA)) {
        return std::nullopt;
    }
    std::uint64_t length = 0;
    const char* const bytes = plist_get_data_ptr(node, &length);
    return bytes == nullptr ? ZRMData() : ZRMData(bytes, bytes + length);
}

plist_t zrm_propertyListEntry(plist_t dictionary, const char* key) {
    return isType(dictionary, PLIST_DICT) ? plist_dict_get_item(dictionary, key) : nullptr;
}

plist_t zrm_newPropertyListText(const std::string& text) {
    return isPrintable(text) ? plist_new_string(text.c_str())
                             : plist_new_data(text.data(), text.size());
}

std::optional<std::string> zrm_propertyListText(plist_t node) {
    if (const auto data = zrm_propertyListData(node)) {
        return zrm_textFromData(*data);
    }
    return zrm_propertyListString(node);
}

plist_t zrm_newPropertyListData(const ZRMData& bytes) {
    return plist_new_data(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}
