#include "screen/qt/player/MediaCertificates.h"

#include "platform/Log.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <gio/gio.h>

namespace velmora::screen {

namespace {

template <auto release>
struct Release {
    void operator()(auto* what) const { release(what); }
};

using Database = std::unique_ptr<GTlsDatabase, Release<g_object_unref>>;
using Fault = std::unique_ptr<GError, Release<g_error_free>>;

Database databaseOf(const std::string& file) {
    std::error_code error;
    // GIO takes a name that is not absolute for a fault of the program.
    const auto path = std::filesystem::absolute(file, error).string();
    GError* fault = nullptr;
    Database database(g_tls_file_database_new(path.c_str(), &fault));
    if (const Fault owned(fault); owned)
        platform::log("The certificates of " + path + " cannot be read: " + owned->message);
    return database;
}

}  // namespace

bool trustCertificatesOfEnvironment() {
    static bool isOurs = false;
    const char* file = std::getenv("VELMORA_CA_FILE");
    const bool isNamed = file != nullptr && *file != '\0';
    if (!isNamed && !isOurs) return true;
    const Database database(isNamed ? databaseOf(file) : nullptr);
    if (isNamed && !database) return false;
    isOurs = isNamed;
    g_tls_backend_set_default_database(g_tls_backend_get_default(), database.get());
    return true;
}

}  // namespace velmora::screen
