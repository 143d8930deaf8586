#include "screen/Fonts.h"

#include <algorithm>
#include <limits>

#include <QByteArray>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>

namespace velmora::screen {

namespace {

/// Beyond it a rasterizer runs out of memory rather than of screen.
constexpr double kLargest = 1000;

bool hasScreens() { return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr; }

/// A size that is not a number is the smallest one.
int wholePixels(double size) { return size >= 1 ? static_cast<int>(std::min(size, kLargest) + 0.5) : 1; }

}  // namespace

bool Fonts::add(const std::string& data) {
    if (data.empty() || data.size() > std::numeric_limits<int>::max() || !hasScreens()) return false;
    return QFontDatabase::addApplicationFontFromData(QByteArray::fromStdString(data)) >= 0;
}

std::optional<QFont> Fonts::fontWithName(std::string_view family, double size) {
    const auto name = QString::fromUtf8(family.data(), static_cast<qsizetype>(family.size()));
    if (!hasScreens() || !QFontDatabase::hasFamily(name)) return std::nullopt;
    QFont font(name);
    // Pixels and not points: the same text has the same size on every screen and in every picture.
    font.setPixelSize(wholePixels(size));
    return font;
}

}  // namespace velmora::screen
