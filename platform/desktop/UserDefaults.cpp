#include "platform/UserDefaults.h"

#include "platform/Directories.h"
#include "platform/Immortal.h"
#include "platform/Json.h"
#include "platform/Log.h"
#include "platform/desktop/Database.h"

namespace velmora::platform {

UserDefaults& UserDefaults::standard() {
    static Immortal<UserDefaults> instance(applicationDataDirectory() / "defaults.sqlite3");
    return *instance;
}

UserDefaults::UserDefaults(std::filesystem::path file)
    : database_(std::make_unique<Database>(std::move(file))) {}

UserDefaults::~UserDefaults() = default;

UserDefaults::Batch::Batch(UserDefaults& defaults) : database_(*defaults.database_) { database_.begin(); }

UserDefaults::Batch::~Batch() { database_.commit(); }

std::optional<Value> UserDefaults::objectForKey(std::string_view key, Storage storage) {
    return lookUp(key, std::move(storage)).value;
}

UserDefaults::Stored UserDefaults::lookUp(std::string_view key, Storage storage) {
    Stored stored;
    bool found = false;
    stored.wasRead = database_->get(key, [&](std::string_view text) {
        found = true;
        stored.value = parseJson(text, std::move(storage));
    });
    if (found && !stored.value)
        log("The stored value of \"" + std::string(key) + "\" is damaged and reads as absent");
    return stored;
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) {
    return asString(objectForKey(key));
}

bool UserDefaults::boolForKey(std::string_view key) {
    const auto value = objectForKey(key);
    if (const auto text = asString(value)) return *text == "YES" || *text == "true" || *text == "1";
    return asBool(value);
}

bool UserDefaults::hasKey(std::string_view key) { return database_->has(key); }

void UserDefaults::setObject(const Value& value, std::string_view forKey) {
    setJson(writeJson(value), forKey);
}

void UserDefaults::setBool(bool value, std::string_view forKey) { setJson(value ? "true" : "false", forKey); }

void UserDefaults::removeObjectForKey(std::string_view key) { database_->remove(key); }

void UserDefaults::setJson(const std::optional<std::string>& json, std::string_view forKey) {
    if (json) return database_->set(forKey, *json);
    log("The value for \"" + std::string(forKey) + "\" cannot be written as JSON, and the old one stays");
}

}  // namespace velmora::platform
