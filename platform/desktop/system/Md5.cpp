#include "platform/Md5.h"

#include <memory>

#include <glib.h>

namespace velmora::platform {

std::string md5(std::string_view bytes) {
    const std::unique_ptr<char, decltype(&g_free)> digest(
        g_compute_checksum_for_string(G_CHECKSUM_MD5, bytes.data(), static_cast<gssize>(bytes.size())),
        &g_free);
    return digest.get();
}

}  // namespace velmora::platform
