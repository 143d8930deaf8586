// Asks for ads from a terminal or a script: a line of JSON for every callback.

#include "Options.h"
#include "Requests.h"

#include <QCoreApplication>

int main(int count, char** arguments) {
    QCoreApplication application(count, arguments);
    QCoreApplication::setApplicationName("velmora-request");
    const auto options = request::parse(application);
    if (!options) return 2;

    auto configuration = std::make_shared<velmora::VLConfiguration>();
    configuration->setDebugMode(options->debug);
    velmora::Velmora::initializeWithAppKey(options->appKey, configuration);

    request::Requests requests(*options);
    QObject::connect(&requests, &request::Requests::finished, &application, &QCoreApplication::quit);
    QMetaObject::invokeMethod(&requests, &request::Requests::start, Qt::QueuedConnection);
    return QCoreApplication::exec();
}
