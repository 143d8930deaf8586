#pragma once

namespace velmora::platform {

/// Which way up the interface is; the numbers are those that the ad service and its pages know.
enum class InterfaceOrientation : int {
    unknown = 0,
    portrait = 1,
    portraitUpsideDown = 2,
    landscapeRight = 3,
    landscapeLeft = 4,
};

[[nodiscard]] constexpr bool isPortrait(InterfaceOrientation orientation) {
    return orientation == InterfaceOrientation::portrait ||
           orientation == InterfaceOrientation::portraitUpsideDown;
}

[[nodiscard]] constexpr bool isLandscape(InterfaceOrientation orientation) {
    return orientation == InterfaceOrientation::landscapeRight ||
           orientation == InterfaceOrientation::landscapeLeft;
}

/// In device-independent pixels.
struct ScreenSize {
    double width = 0;
    double height = 0;
};

/// A screen's facts.
struct Screen {
    ScreenSize size;
    /// Pixels of the device for one of these.
    double scale = 0;
    /// By the shape of the screen and how it is turned.
    InterfaceOrientation orientation = InterfaceOrientation::unknown;

    /// The main screen, as it was last told; all zero and unknown before that, and where there is none. Any
    /// thread, and nothing waits.
    [[nodiscard]] static Screen main();

    /// For what shows, which alone knows the toolkit's screens. Any thread.
    static void setMain(const Screen& screen);
};

}  // namespace velmora::platform
