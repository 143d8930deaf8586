#include "platform/UserDefaults.h"

#include "platform/Directories.h"
#include "platform/Immortal.h"
#include "platform/Json.h"
#include "platform/Log.h"
#include "platform/desktop/store/Database.h"

namespace velmora::platform {

namespace {

void logUnwritable(std::string_view key) {
    log("The value for \"" + std::string(key) + "\" cannot be written as JSON, and the old one stays");
}

}  // namespace

UserDefaults& UserDefaults::standard() {
    static Immortal<UserDefaults> instance(applicationDataDirectory() / "defaults.sqlite3");
    return *instance;
}

UserDefaults::UserDefaults(std::filesystem::path file)
    : database_(std::make_unique<Database>(std::move(file))) {}

UserDefaults::~UserDefaults() = default;

std::optional<Value> UserDefaults::objectForKey(std::string_view key) { return lookUp(key).value; }

UserDefaults::Stored UserDefaults::lookUp(std::string_view key) {
    Stored stored;
    bool found = false;
    const bool wasRead = database_->get(key, [&](std::string_view text) {
        found = true;
        stored.value = parseJson(text);
    });
    stored.isMissing = wasRead && !found;
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
    logUnwritable(forKey);
}

void UserDefaults::appendToList(std::string_view list, const std::optional<std::string>& dictionary,
                                std::string_view forKey) {
    if (dictionary) return database_->append(forKey, *dictionary, "$." + std::string(list));
    logUnwritable(forKey);
}

void UserDefaults::inOneTransaction(const std::function<void()>& changes) {
    database_->inOneTransaction(changes);
}

}  // namespace velmora::platform
