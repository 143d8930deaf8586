#include "device/VLMD5.h"

#include "platform/Md5.h"

namespace velmora {

std::optional<std::string> VLMD5(const std::optional<std::string>& text) {
    if (!text || text->empty()) return text;
    return platform::md5(text->substr(0, text->find('\0')));
}

}  // namespace velmora
