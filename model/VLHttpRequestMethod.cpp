#include "model/VLHttpRequestMethod.h"

namespace velmora {

VLHttpRequestMethod httpRequestMethodOf(const platform::Property& number) {
    for (const auto method :
         {VLHttpRequestMethod::get, VLHttpRequestMethod::post, VLHttpRequestMethod::put}) {
        if (platform::equals(number, method)) return method;
    }
    return VLHttpRequestMethod::get;
}

std::int64_t numberOf(VLHttpRequestMethod method) {
    switch (method) {
    case VLHttpRequestMethod::get:
    case VLHttpRequestMethod::post:
    case VLHttpRequestMethod::put: return static_cast<std::int64_t>(method);
    }
    return static_cast<std::int64_t>(VLHttpRequestMethod::get);
}

}  // namespace velmora
