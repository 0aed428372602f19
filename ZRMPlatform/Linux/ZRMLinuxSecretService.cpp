#include "ZRMPlatform/Linux/ZRMLinuxSecretService.h"

#include <filesystem>

#include <dlfcn.h>
#include <libsecret/secret.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

// The functions of libsecret and GLib in use, found at run time: where the service is not used,
// neither library is loaded.
struct Library {
    void* handle = ::dlopen("libsecret-1.so.0", RTLD_NOW | RTLD_LOCAL);

    template <class Function>
    Function* find(Function*, const char* name) {
        auto* const found = handle == nullptr ? nullptr : ::dlsym(handle, name);
        isComplete = isComplete && found != nullptr;
        return reinterpret_cast<Function*>(found);
    }

    bool isComplete = true;
// NOLINTNEXTLINE(bugprone-macro-parentheses): the first use declares
#define ZRM_FIND(name) decltype(&::name) name = find(decltype(&::name){}, #name)
    ZRM_FIND(secret_service_get_sync);
    ZRM_FIND(secret_service_search_sync);
    ZRM_FIND(secret_service_store_sync);
    ZRM_FIND(secret_collection_for_alias_sync);
    ZRM_FIND(secret_collection_get_locked);
    ZRM_FIND(secret_item_get_locked);
    ZRM_FIND(secret_item_get_secret);
    ZRM_FIND(secret_item_set_secret_sync);
    ZRM_FIND(secret_item_delete_sync);
    ZRM_FIND(secret_value_new);
    ZRM_FIND(secret_value_get);
    ZRM_FIND(secret_value_unref);
    ZRM_FIND(g_error_free);
    ZRM_FIND(g_hash_table_new_full);
    ZRM_FIND(g_hash_table_insert);
    ZRM_FIND(g_hash_table_unref);
    ZRM_FIND(g_str_hash);
    ZRM_FIND(g_str_equal);
    ZRM_FIND(g_strndup);
    ZRM_FIND(g_free);
    ZRM_FIND(g_list_free_full);
    ZRM_FIND(g_object_unref);
#undef ZRM_FIND
};

// Loaded once and kept: GLib cannot be unloaded.
const Library& library() {
    static const auto* const loaded = new Library;
    return *loaded;
}

const SecretSchema& schema() {
    static const SecretSchema value = {"com.velorin.zrm.keychain",
                                       SECRET_SCHEMA_NONE,
                                       {{"class", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                        {"accessible", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                        {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                        {"group", SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                       0,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr};
    return value;
}

struct Unref {
    void operator()(void* object) const { library().g_object_unref(object); }
    void operator()(GHashTable* table) const { library().g_hash_table_unref(table); }
    void operator()(SecretValue* value) const { library().secret_value_unref(value); }
    void operator()(GList* items) const {
        library().g_list_free_full(items, library().g_object_unref);
    }
};
using Attributes = std::unique_ptr<GHashTable, Unref>;
using Items = std::unique_ptr<GList, Unref>;
using Value = std::unique_ptr<SecretValue, Unref>;

void insert(GHashTable* table, const char* name, const std::string& value) {
    const auto& functions = library();
    functions.g_hash_table_insert(table, const_cast<char*>(name),
                                  functions.g_strndup(value.data(), value.size()));
}

// An item without a group carries an empty one, so that it can be told from those with one.
Attributes attributesOf(const ZRMKeychainQuery& query, bool isWhole) {
    const auto& functions = library();
    Attributes table(functions.g_hash_table_new_full(functions.g_str_hash, functions.g_str_equal,
                                                     nullptr, functions.g_free));
    insert(table.get(), "class", "genp");
    const bool isAlways = query.accessibility == ZRMKeychainAccessibility::AlwaysThisDeviceOnly;
    insert(table.get(), "accessible", isAlways ? "dku" : "ak");
    insert(table.get(), "account", query.account);
    if (isWhole || query.accessGroup) {
        insert(table.get(), "group", query.accessGroup.value_or(""));
    }
    return table;
}

Value secretOf(const ZRMData& bytes) {
    return Value(library().secret_value_new(reinterpret_cast<const char*>(bytes.data()),
                                            static_cast<gssize>(bytes.size()),
                                            "application/octet-stream"));
}

class SecretServiceItems : public ZRMKeychainItems {
  public:
    explicit SecretServiceItems(SecretService* service) : service_(service) {}

    std::int32_t copyMatching(const ZRMKeychainQuery& query, ZRMData& value) const override {
        Items items;
        if (const auto status = search(query, false, items); status != ZRMKeychainSuccess) {
            return status;
        }
        const Value secret(library().secret_item_get_secret(static_cast<SecretItem*>(items->data)));
        if (!secret) {
            return ZRMKeychainNotAvailable;
        }
        gsize length = 0;
        const char* const bytes = library().secret_value_get(secret.get(), &length);
        value.assign(bytes, bytes + length);
        return ZRMKeychainSuccess;
    }

    std::int32_t add(const ZRMKeychainQuery& item, const ZRMData& value) override {
        Items items;
        const auto status = search(item, true, items);
        if (status != ZRMKeychainItemNotFound) {
            return status == ZRMKeychainSuccess ? std::int32_t{ZRMKeychainDuplicateItem} : status;
        }
        const std::unique_ptr<SecretCollection, Unref> collection(
            library().secret_collection_for_alias_sync(service_.get(), SECRET_COLLECTION_DEFAULT,
                                                       SECRET_COLLECTION_NONE, nullptr, nullptr));
        if (!collection) {
            return ZRMKeychainNotAvailable;
        }
        if (library().secret_collection_get_locked(collection.get()) != 0) {
            return ZRMKeychainInteractionNotAllowed;
        }
        const bool isStored = library().secret_service_store_sync(
                                  service_.get(), &schema(), attributesOf(item, true).get(),
                                  SECRET_COLLECTION_DEFAULT, item.account.c_str(),
                                  secretOf(value).get(), nullptr, nullptr) != 0;
        return isStored ? ZRMKeychainSuccess : ZRMKeychainNotAvailable;
    }

    std::int32_t update(const ZRMKeychainQuery& query, const ZRMData& value) override {
        return forEach(query, [&value](SecretItem* item) {
            return library().secret_item_set_secret_sync(item, secretOf(value).get(), nullptr,
                                                         nullptr) != 0;
        });
    }

    std::int32_t remove(const ZRMKeychainQuery& query) override {
        return forEach(query, [](SecretItem* item) {
            return library().secret_item_delete_sync(item, nullptr, nullptr) != 0;
        });
    }

  private:
    // Success with at least one item that is not locked, or why there is none.
    std::int32_t search(const ZRMKeychainQuery& query, bool isWhole, Items& items) const {
        const auto flags =
            static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS);
        GError* failure = nullptr;
        items.reset(library().secret_service_search_sync(service_.get(), &schema(),
                                                         attributesOf(query, isWhole).get(), flags,
                                                         nullptr, &failure));
        if (failure != nullptr) {
            library().g_error_free(failure);
            return ZRMKeychainNotAvailable;
        }
        if (!items) {
            return ZRMKeychainItemNotFound;
        }
        const bool isLocked =
            library().secret_item_get_locked(static_cast<SecretItem*>(items->data)) != 0;
        return isLocked ? ZRMKeychainInteractionNotAllowed : ZRMKeychainSuccess;
    }

    template <class Change>
    std::int32_t forEach(const ZRMKeychainQuery& query, Change change) {
        Items items;
        if (const auto status = search(query, false, items); status != ZRMKeychainSuccess) {
            return status;
        }
        for (const GList* link = items.get(); link != nullptr; link = link->next) {
            if (!change(static_cast<SecretItem*>(link->data))) {
                return ZRMKeychainNotAvailable;
            }
        }
        return ZRMKeychainSuccess;
    }

    std::unique_ptr<SecretService, Unref> service_;
};

// Without one GLib would try to start a bus of its own.
bool hasSessionBus() {
    if (zrm_environmentVariable("DBUS_SESSION_BUS_ADDRESS")) {
        return true;
    }
    const auto usual = "/run/user/" + std::to_string(::getuid());
    std::error_code failure;
    return std::filesystem::exists(
        zrm_environmentVariable("XDG_RUNTIME_DIR").value_or(usual) + "/bus", failure);
}

}  // namespace

std::shared_ptr<ZRMKeychainItems> zrm_connectSecretService() {
    if (!hasSessionBus() || !library().isComplete) {
        return nullptr;
    }
    SecretService* const service =
        library().secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr);
    return service == nullptr ? nullptr : std::make_shared<SecretServiceItems>(service);
}
