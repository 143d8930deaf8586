#pragma once

#include <cstdint>

#include <velmora/export.h>

namespace velmora {

extern "C" {

/// What an application gives as the "back disabled" show option to turn it on.
extern VELMORA_EXPORT const std::int64_t TYPE_DISABLE_BACK;

/// The build version of the library file, not the version of the interface: see `Velmora::getVersion`.
extern VELMORA_EXPORT const double VelmoraSDKv3VersionNumber;

/// The build version as a text that can be found in the binary; ends with a line feed.
extern VELMORA_EXPORT const char VelmoraSDKv3VersionString[];

}  // extern "C"

}  // namespace velmora
