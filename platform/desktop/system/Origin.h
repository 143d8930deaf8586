#pragma once

namespace velmora::platform {

/// Logs a line when a function of another library is neither in that library's shared file, whose name begins
/// with `library`, nor in this one's: an application that exports a copy of its own takes the calls over.
void warnOfForeign(const char* library, const void* function);

}  // namespace velmora::platform
