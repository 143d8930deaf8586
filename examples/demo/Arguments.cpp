#include "Arguments.h"

#include "Zones.h"

#include <string>
#include <vector>

#include <CommandLine.h>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryFile>

namespace demo {

namespace {

std::optional<QSize> sizeFrom(const QString& text) {
    static const QRegularExpression pattern("^([1-9][0-9]{1,4})x([1-9][0-9]{1,4})$");
    const auto match = pattern.match(text);
    if (!match.hasMatch()) return std::nullopt;
    return QSize(match.captured(1).toInt(), match.captured(2).toInt());
}

QString screenFile(QSize size) {
    const QJsonObject screen{{"name", "memory"},
                             {"x", 0},
                             {"y", 0},
                             {"width", size.width()},
                             {"height", size.height()},
                             {"logicalDpi", 96},
                             {"logicalBaseDpi", 96},
                             {"dpr", 1}};
    // Read when the application is made, and gone with the process.
    static QTemporaryFile file(QDir::temp().filePath("velmora-demo-XXXXXX.json"));
    if (!file.open()) return {};
    file.write(QJsonDocument(QJsonObject{{"screens", QJsonArray{screen}}}).toJson());
    file.close();
    return file.fileName();
}

std::vector<std::string> zoneNames() {
    std::vector<std::string> names;
    for (const auto& zone : kZones) names.emplace_back(zone.name);
    return names;
}

/// Sets `target` to what is given.
CLI::Option* addText(CLI::App& program, const std::string& option, QString& target,
                     const std::string& words) {
    return program.add_option_function<std::string>(
        option, [&target](const std::string& text) { target = QString::fromStdString(text); }, words);
}

}  // namespace

bool hasDisplay() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

void prepareDisplay(QSize size) {
    if (hasDisplay() || qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return;
    const auto file = screenFile(size);
    qputenv("QT_QPA_PLATFORM", file.isEmpty() ? "offscreen" : "offscreen:configfile=" + file.toLocal8Bit());
    // No sound card either, as a rule.
    if (!qEnvironmentVariableIsSet("ALSOFT_DRIVERS")) qputenv("ALSOFT_DRIVERS", "null");
}

std::optional<int> read(int count, char** words, Arguments& arguments) {
    CLI::App program("A window to ask for ads and to see them, and what the library tells about them.\n"
                     "VELMORA_API_BASE_URL names the service, VELMORA_CA_FILE the certificates to trust.",
                     "velmora-demo");
    program.add_flag(
        "--auto", arguments.isAuto,
        "Run every zone to its end, leave a report, and end: with status 0 when all went as the zones say. "
        "This is what happens without a display.");
    addText(program, "--zone", arguments.zone, "Run this zone only.")->check(CLI::IsMember(zoneNames()));
    addText(program, "--report", arguments.report, "Where the report of --auto goes: a folder.");
    program.add_flag("--json", arguments.json, "Print a line of JSON for every event.");
    program.add_option_function<std::string>(
        "--size",
        [&arguments](const std::string& text) {
            const auto size = sizeFrom(QString::fromStdString(text));
            if (!size) throw CLI::ValidationError("--size takes a width and a height, as in 390x844");
            arguments.size = *size;
        },
        "The window's size, as in 390x844; without a display, the screen's too.");
    program.add_flag("--dark", arguments.dark, "Begin with dark colours.");
    addText(program, "--inspector", arguments.inspector,
            "The URL of the sandbox ad service's inspector, whose ledger goes into the report.");
    addText(program, "--facts", arguments.facts,
            "The program that prints what the library finds out about this device.");
    program.add_flag("--debug", arguments.debug, "Print what the library logs, on standard error.");
    if (const auto end = readCommandLine(program, count, words)) return end;

    if (!hasDisplay()) arguments.isAuto = true;
    if (!arguments.inspector.isEmpty() && !arguments.inspector.endsWith('/')) arguments.inspector += '/';
    return std::nullopt;
}

}  // namespace demo
