#pragma once

#include "harness/TemporaryDirectory.h"
#include "support/Environment.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace velmora::test {

/// A program of the desktop's that opens the URLs of one scheme and writes them down. The desktop must not
/// have been asked for a program before.
class Opener {
public:
    explicit Opener(const std::string& scheme) {
        const auto applications = home_ / "applications";
        std::filesystem::create_directories(applications);
        const auto program = home_ / "opener";
        std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$@\" >> '" << seen().string() << "'\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        std::ofstream(applications / "opener.desktop")
            << "[Desktop Entry]\nType=Application\nName=Opener\nExec=" << program.string()
            << " %u\nMimeType=x-scheme-handler/" << scheme << ";\n";
        std::ofstream(applications / "mimeapps.list")
            << "[Default Applications]\nx-scheme-handler/" << scheme << "=opener.desktop\n";
    }

    /// The URLs in their order, each once it was written down whole.
    [[nodiscard]] std::vector<std::string> opened() const {
        std::vector<std::string> urls;
        std::ifstream file(seen());
        for (std::string line; std::getline(file, line) && !file.eof();) urls.push_back(line);
        return urls;
    }

private:
    [[nodiscard]] std::filesystem::path seen() const { return home_ / "seen"; }

    TemporaryDirectory home_;
    Environment data_{"XDG_DATA_HOME", home_.path().c_str()};
    Environment config_{"XDG_CONFIG_HOME", home_.path().c_str()};
};

}  // namespace velmora::test
