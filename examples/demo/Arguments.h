#pragma once

#include <optional>

#include <QSize>
#include <QString>

namespace demo {

/// What the command line asks for.
struct Arguments {
    /// Runs the zones by itself and ends.
    bool isAuto = false;
    /// A line of JSON for every event.
    bool json = false;
    bool dark = false;
    bool debug = false;
    /// The only zone to run; empty for all.
    QString zone;
    /// Where the report goes; a folder of its own under the temporary one when none was named.
    QString report;
    /// Of the sandbox ad service, ending in a slash; empty when there is none to look into.
    QString inspector;
    /// The program that finds out what the library knows of this device; empty for none.
    QString facts;
    QSize size{1280, 800};
};

/// Reads the command line into `arguments`. The status to end with when the program is not to go on.
[[nodiscard]] std::optional<int> read(int count, char** words, Arguments& arguments);

/// What has to be settled before there is an application: without a display the window lives in memory, on a
/// screen of this size.
void prepareDisplay(QSize size);

[[nodiscard]] bool hasDisplay();

}  // namespace demo
