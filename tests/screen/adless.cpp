// An application with the library linked in, which has not asked for an ad. It succeeds when there is no
// browser in its process, and one could come.
#include <velmora/velmora.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <QApplication>

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    velmora::Velmora::setDebugMode(false);
    std::ifstream maps("/proc/self/maps");
    const std::string images(std::istreambuf_iterator<char>(maps), {});
    const bool hasLibrary = images.find("libvelmora.so") != std::string::npos;
    const bool hasBrowser = images.find("WebEngine") != std::string::npos;
    const bool mayCome = QCoreApplication::testAttribute(Qt::AA_ShareOpenGLContexts);
    return hasLibrary && !hasBrowser && mayCome ? EXIT_SUCCESS : EXIT_FAILURE;
}
