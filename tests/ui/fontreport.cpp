#include "ui/VLTextAttributes.h"

#include <cstdio>
#include <cstdlib>

#include <QGuiApplication>

// A process that has drawn no text yet: says whether the styles have fonts, and how often fonts were added.

int main(int count, char** arguments) {
    using velmora::VLTextAttributes;
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QGuiApplication application(count, arguments);
    int added = 0;
    QObject::connect(&application, &QGuiApplication::fontDatabaseChanged, [&] { ++added; });

    const bool funBefore = VLTextAttributes::funTextAttributes().attributes().font.has_value();
    const bool usual = VLTextAttributes::defaultTextAttributes().attributes().font.has_value();
    const bool fun = VLTextAttributes::funTextAttributes().attributes().font.has_value();
    VLTextAttributes::loadBundleFonts();

    std::printf("fun %d, then default %d, fun %d; added %d", funBefore, usual, fun, added);
    return EXIT_SUCCESS;
}
