#pragma once

#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace velmora::test {

/// Small videos, made by ffmpeg when they are asked for.
class Videos {
public:
    using Path = std::filesystem::path;

    /// `more` goes before the name of the file on ffmpeg's command line.
    [[nodiscard]] Path make(const std::string& name, const std::string& more) const {
        const Path file = folder_ / name;
        const auto command = "ffmpeg -nostdin -loglevel error -y " + more + " '" + file.string() + "'";
        // NOLINTNEXTLINE(cert-env33-c): a fixed program on names of this process
        if (std::system(command.c_str()) != 0) throw std::runtime_error("no video from: " + command);
        return file;
    }

    /// H.264 and AAC, with the head before the pictures, as what is streamed has it.
    [[nodiscard]] Path usual(int seconds = 2) const {
        const auto length = std::to_string(seconds);
        return make("usual.mp4", "-f lavfi -i testsrc=size=160x120:rate=20:duration=" + length +
                                     " -f lavfi -i sine=duration=" + length +
                                     " -c:v libx264 -g 5 -pix_fmt yuv420p -c:a aac -movflags +faststart");
    }

    [[nodiscard]] Path soundOnly() const { return make("sound.mp4", "-f lavfi -i sine=duration=1 -c:a aac"); }

    /// Brown, red 192, green 128 and blue 64, so that nothing is cut off; the matrix is bt601 or bt709, the
    /// range tv or pc.
    [[nodiscard]] Path brown(const std::string& matrix, const std::string& range) const {
        const auto space = matrix == "bt601" ? "smpte170m" : matrix;
        return make(matrix + range + ".mp4", "-f lavfi -i color=c=0xC08040:size=160x90:rate=10:duration=1"
                                             " -vf scale=out_color_matrix=" +
                                                 matrix + ":out_range=" + range + " -colorspace " + space +
                                                 " -color_range " + range + " -c:v libx264 -pix_fmt yuv420p");
    }

    [[nodiscard]] Path file(const std::string& name, std::string_view content) const {
        writeContent(folder_ / name, content);
        return folder_ / name;
    }

    /// The first half of another one.
    [[nodiscard]] Path half(const std::string& name, const Path& whole) const {
        const auto content = contentOf(whole);
        return file(name, std::string_view(content).substr(0, content.size() / 2));
    }

    [[nodiscard]] Path missing() const { return folder_ / "missing.mp4"; }

private:
    TemporaryDirectory folder_;
};

}  // namespace velmora::test
