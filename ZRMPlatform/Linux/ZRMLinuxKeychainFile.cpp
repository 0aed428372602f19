#include "ZRMPlatform/Linux/ZRMLinuxKeychainFile.h"

#include <functional>

namespace {

const char* nameOf(ZRMKeychainItemClass) {
    return "genp";
}

const char* nameOf(ZRMKeychainAccessibility accessibility) {
    return accessibility == ZRMKeychainAccessibility::AlwaysThisDeviceOnly ? "dku" : "ak";
}

bool matches(const ZRMKeychainQuery& query, plist_t item) {
    const auto textOf = [item](const char* key) {
        return zrm_propertyListText(zrm_propertyListEntry(item, key));
    };
    return textOf("class") == nameOf(query.itemClass) &&
           textOf("accessible") == nameOf(query.accessibility) &&
           textOf("account") == query.account &&
           (!query.accessGroup || textOf("group") == query.accessGroup);
}

// An item of exactly these attributes, where no group means an item without one.
bool isSame(const ZRMKeychainQuery& query, plist_t item) {
    return matches(query, item) &&
           (query.accessGroup || zrm_propertyListEntry(item, "group") == nullptr);
}

plist_t newItem(const ZRMKeychainQuery& query, const ZRMData& value) {
    plist_t item = plist_new_dict();
    plist_dict_set_item(item, "class", plist_new_string(nameOf(query.itemClass)));
    plist_dict_set_item(item, "accessible", plist_new_string(nameOf(query.accessibility)));
    plist_dict_set_item(item, "account", zrm_newPropertyListText(query.account));
    if (query.accessGroup) {
        plist_dict_set_item(item, "group", zrm_newPropertyListText(*query.accessGroup));
    }
    plist_dict_set_item(item, "value", zrm_newPropertyListData(value));
    return item;
}

// The list of items; made where there is none.
plist_t itemsIn(plist_t dictionary) {
    plist_t items = zrm_propertyListEntry(dictionary, "items");
    if (!PLIST_IS_ARRAY(items)) {
        items = plist_new_array();
        plist_dict_set_item(dictionary, "items", items);
    }
    return items;
}

using Matcher = bool (*)(const ZRMKeychainQuery&, plist_t);

plist_t firstIn(plist_t items, const ZRMKeychainQuery& query, Matcher matcher) {
    for (std::uint32_t index = 0; index < plist_array_get_size(items); ++index) {
        plist_t item = plist_array_get_item(items, index);
        if (matcher(query, item)) {
            return item;
        }
    }
    return nullptr;
}

// Runs a change that returns its status; what it did is written when that is success.
std::int32_t changed(ZRMLinuxPropertyListFile& file,
                     const std::function<std::int32_t(plist_t items)>& change) {
    std::int32_t status = ZRMKeychainSuccess;
    const auto failure = file.update([&](plist_t dictionary) {
        status = change(itemsIn(dictionary));
        return status == ZRMKeychainSuccess;
    });
    return failure ? ZRMKeychainNotAvailable : status;
}

}  // namespace

ZRMLinuxKeychainFile::ZRMLinuxKeychainFile(std::string path, std::shared_ptr<ZRMConsoleLog> console)
    : file_(std::move(path), std::move(console)) {}

std::int32_t ZRMLinuxKeychainFile::copyMatching(const ZRMKeychainQuery& query,
                                                ZRMData& value) const {
    const auto list = file_.read();
    if (!list) {
        return ZRMKeychainNotAvailable;
    }
    plist_t item = firstIn(itemsIn(list.value().get()), query, &matches);
    if (item == nullptr) {
        return ZRMKeychainItemNotFound;
    }
    value = zrm_propertyListData(zrm_propertyListEntry(item, "value")).value_or(ZRMData());
    return ZRMKeychainSuccess;
}

std::int32_t ZRMLinuxKeychainFile::add(const ZRMKeychainQuery& item, const ZRMData& value) {
    return changed(file_, [&](plist_t items) {
        if (firstIn(items, item, &isSame) != nullptr) {
            return ZRMKeychainDuplicateItem;
        }
        plist_array_append_item(items, newItem(item, value));
        return ZRMKeychainSuccess;
    });
}

std::int32_t ZRMLinuxKeychainFile::update(const ZRMKeychainQuery& query, const ZRMData& value) {
    return changed(file_, [&](plist_t items) {
        auto status = ZRMKeychainItemNotFound;
        for (std::uint32_t index = 0; index < plist_array_get_size(items); ++index) {
            plist_t item = plist_array_get_item(items, index);
            if (matches(query, item)) {
                plist_dict_set_item(item, "value", zrm_newPropertyListData(value));
                status = ZRMKeychainSuccess;
            }
        }
        return status;
    });
}

std::int32_t ZRMLinuxKeychainFile::remove(const ZRMKeychainQuery& query) {
    return changed(file_, [&](plist_t items) {
        auto status = ZRMKeychainItemNotFound;
        while (plist_t item = firstIn(items, query, &matches)) {
            plist_array_remove_item(items, plist_array_get_item_index(item));
            status = ZRMKeychainSuccess;
        }
        return status;
    });
}
