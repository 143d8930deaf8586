#pragma once

namespace velmora::screen {

/// Makes GIO, which videos are loaded through, trust the certificates in the file that `VELMORA_CA_FILE`
/// names, and no others. Without the variable nothing changes, unless it was set before: then it is the
/// system's again. Counts for the whole process.
///
/// False, with a log line, when the file cannot be read: then nobody is to be trusted.
[[nodiscard]] bool trustCertificatesOfEnvironment();

}  // namespace velmora::screen
