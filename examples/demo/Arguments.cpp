#include "Arguments.h"

#include "Zones.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include <QCommandLineParser>
#include <QCoreApplication>
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

/// Ahead of the parser, which needs an application.
QString valueOf(const char* option, int count, char** words) {
    const QString name(option);
    for (int index = 1; index < count; ++index) {
        const auto word = QString::fromLocal8Bit(words[index]);
        if (word == name && index + 1 < count) return QString::fromLocal8Bit(words[index + 1]);
        if (word.startsWith(name + '=')) return word.mid(name.size() + 1);
    }
    return {};
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

bool isZone(const QString& name) {
    return std::any_of(kZones.begin(), kZones.end(), [&](const Zone& zone) { return name == zone.name; });
}

std::nullopt_t complain(const QString& words) {
    std::cerr << "velmora-demo: " << words.toStdString() << "; see --help\n";
    return std::nullopt;
}

}  // namespace

bool hasDisplay() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

void prepareDisplay(int count, char** words) {
    if (hasDisplay() || qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return;
    const auto size = sizeFrom(valueOf("--size", count, words)).value_or(Arguments().size);
    const auto file = screenFile(size);
    qputenv("QT_QPA_PLATFORM", file.isEmpty() ? "offscreen" : "offscreen:configfile=" + file.toLocal8Bit());
    // No sound card either, as a rule.
    if (!qEnvironmentVariableIsSet("ALSOFT_DRIVERS")) qputenv("ALSOFT_DRIVERS", "null");
}

std::optional<Arguments> parse(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "A window to ask for ads and to see them, and what the library tells about them.\n"
        "VELMORA_API_BASE_URL names the service, VELMORA_CA_FILE the certificates to trust.");
    parser.addHelpOption();
    parser.addOptions({
        {"auto",
         "Run every zone to its end, leave a report, and end: with status 0 when all went as the zones say. "
         "This is what happens without a display."},
        {"zone", "Run this zone only.", "name"},
        {"report", "Where the report of --auto goes.", "folder"},
        {"json", "Print a line of JSON for every event."},
        {"size", "The window's size; without a display, the screen's too.", "WxH", "1280x800"},
        {"dark", "Begin with dark colours."},
        {"inspector", "The sandbox ad service's inspector, whose ledger goes into the report.", "URL"},
        {"facts", "The program that prints what the library finds out about this device.", "program"},
        {"debug", "Print what the library logs, on standard error."},
    });
    parser.process(application);

    Arguments arguments;
    const auto size = sizeFrom(parser.value("size"));
    if (!size) return complain("--size takes a width and a height, as in 390x844");
    if (!parser.positionalArguments().isEmpty()) return complain("nothing stands without an option");
    if (parser.isSet("zone") && !isZone(parser.value("zone")))
        return complain("there is no zone \"" + parser.value("zone") + "\"");
    arguments.isAuto = parser.isSet("auto") || !hasDisplay();
    arguments.json = parser.isSet("json");
    arguments.dark = parser.isSet("dark");
    arguments.debug = parser.isSet("debug");
    arguments.zone = parser.value("zone");
    arguments.report = parser.value("report");
    arguments.inspector = parser.value("inspector");
    if (!arguments.inspector.isEmpty() && !arguments.inspector.endsWith('/')) arguments.inspector += '/';
    arguments.facts = parser.value("facts");
    arguments.size = *size;
    return arguments;
}

}  // namespace demo
