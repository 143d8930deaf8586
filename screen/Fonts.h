#pragma once

#include <optional>
#include <string>
#include <string_view>

class QFont;

namespace velmora::screen {

/// The fonts that texts can be drawn in. Safe to call from any thread.
class Fonts {
public:
    Fonts() = delete;

    /// Makes the families in a font file's data known to this process, to its end. False when the data is no
    /// font, and while there is no application object that has screens.
    [[nodiscard]] static bool add(const std::string& data);

    /// The font of that family at `size` device-independent pixels, which counts in whole ones and is at
    /// least 1; none when no such family is known. A family of the system's counts as one that was added.
    [[nodiscard]] static std::optional<QFont> fontWithName(std::string_view family, double size);
};

}  // namespace velmora::screen
