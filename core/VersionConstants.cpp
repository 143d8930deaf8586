#include <velmora/constants.h>

namespace velmora {

extern "C" {

const std::int64_t TYPE_DISABLE_BACK = 1;

const double VelmoraSDKv3VersionNumber = 1.0;

const char VelmoraSDKv3VersionString[] = "@(#)PROGRAM:VelmoraSDKv3  PROJECT:VelmoraSDKv3-1\n";

}  // extern "C"

}  // namespace velmora
