#include "platform/Locale.h"

#include "platform/Immortal.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <regex>

#include <glib.h>

namespace velmora::platform {

namespace {

/// Language, script and region. A name with an encoding or a modifier is followed by the same one without.
bool isTag(const std::string& text) {
    static Immortal<std::regex> tag("[a-z]{2,3}(-[A-Z][a-z]{3})?(-[A-Z]{2}|-[0-9]{3})?");
    return std::regex_match(text, *tag);
}

void append(std::vector<std::string>& languages, const char* const* names) {
    for (; *names != nullptr; ++names) {
        std::string text = *names;
        std::replace(text.begin(), text.end(), '_', '-');
        const bool isNew = std::find(languages.begin(), languages.end(), text) == languages.end();
        if (isNew && isTag(text)) languages.push_back(std::move(text));
    }
}

/// The locale of messages, as POSIX has it (8.2).
const char* localeOfSession() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const char* value = std::getenv(name); value != nullptr && *value != '\0') return value;
    }
    return "C";
}

}  // namespace

std::vector<std::string> preferredLanguages() {
    std::vector<std::string> languages;
    append(languages, g_get_language_names());
    const std::unique_ptr<char*, decltype(&g_strfreev)> variants(g_get_locale_variants(localeOfSession()),
                                                                 &g_strfreev);
    append(languages, variants.get());
    return languages;
}

}  // namespace velmora::platform
