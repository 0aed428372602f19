#include "ZRMPlatform/Simulated/ZRMSimulatedUserDefaults.h"

#include <utility>

struct ZRMSimulatedUserDefaults::State {
    using Suite = ZRMSimulatedDefaultsStore::Suite;
    using Value = ZRMSimulatedDefaultsStore::Value;

    std::shared_ptr<ZRMSimulatedDefaultsStore> store;
    std::shared_ptr<ZRMSimulatedProcess> process;
    std::shared_ptr<ZRMConsoleLog> console;
    std::map<std::string, Suite> unwritten;  // in this process's memory alone

    [[nodiscard]] const Value* find(const std::string& name, const std::string& key) const {
        for (const auto* suites : {&std::as_const(unwritten), &std::as_const(store->suites())}) {
            if (const auto suite = suites->find(name); suite != suites->end()) {
                if (const auto entry = suite->second.find(key); entry != suite->second.end()) {
                    return &entry->second;
                }
            }
        }
        return nullptr;
    }

    void set(const std::string& name, const std::string& key, Value value) {
        if (!process->isAlive()) {
            return;
        }
        if (store->writesFail()) {
            console->write("Cannot write the defaults suite " + name + "\n");
            unwritten[name][key] = std::move(value);
            return;
        }
        unwritten[name].erase(key);
        store->suites()[name][key] = std::move(value);
    }
};

namespace {

class Suite final : public ZRMUserDefaultsSuite {
  public:
    Suite(std::shared_ptr<ZRMSimulatedUserDefaults::State> state, std::string name)
        : state_(std::move(state)), name_(std::move(name)) {}

    [[nodiscard]] std::optional<double> doubleForKey(const std::string& key) const override {
        return valueOf<double>(key);
    }
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const override {
        return valueOf<std::string>(key);
    }
    void setDouble(const std::string& key, double value) override {
        state_->set(name_, key, value);
    }
    void setString(const std::string& key, const std::string& value) override {
        state_->set(name_, key, value);
    }

  private:
    template <class T>
    [[nodiscard]] std::optional<T> valueOf(const std::string& key) const {
        const auto* const value = state_->find(name_, key);
        const auto* const typed = value ? std::get_if<T>(value) : nullptr;
        return typed ? std::optional<T>(*typed) : std::nullopt;
    }

    std::shared_ptr<ZRMSimulatedUserDefaults::State> state_;
    std::string name_;
};

}  // namespace

ZRMSimulatedUserDefaults::ZRMSimulatedUserDefaults(std::shared_ptr<ZRMSimulatedDefaultsStore> store,
                                                   std::shared_ptr<ZRMSimulatedProcess> process,
                                                   std::shared_ptr<ZRMConsoleLog> console)
    : state_(std::make_shared<State>(
          State{std::move(store), std::move(process), std::move(console), {}})) {}

std::unique_ptr<ZRMUserDefaultsSuite> ZRMSimulatedUserDefaults::openSuite(const std::string& name) {
    return std::make_unique<Suite>(state_, name);
}
