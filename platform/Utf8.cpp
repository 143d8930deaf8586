#include "platform/Utf8.h"

#include <boost/locale/utf.hpp>

namespace velmora::platform {

bool passUtf8Character(const char*& at, const char* end) noexcept {
    using Utf8 = boost::locale::utf::utf_traits<char>;
    const char* next = at;
    if (boost::locale::utf::is_valid_codepoint(Utf8::decode(next, end))) {
        at = next;
        return true;
    }
    ++at;
    while (at != end && Utf8::is_trail(*at)) ++at;
    return false;
}

bool isUtf8(std::string_view text) noexcept {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        if (static_cast<unsigned char>(*at) < 0x80) {
            ++at;
        } else if (!passUtf8Character(at, end)) {
            return false;
        }
    }
    return true;
}

}  // namespace velmora::platform
