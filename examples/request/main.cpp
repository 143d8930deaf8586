// Asks for ads from a terminal or a script: a line of JSON for every callback.

#include "Options.h"
#include "Requests.h"

#include <velmora/hosts/qt.h>

#include <QCoreApplication>

int main(int count, char** arguments) {
    request::Options options;
    CLI::App program("Asks the ad service for ads and prints a line of JSON for every callback.\n"
                     "VELMORA_API_BASE_URL names the service, VELMORA_CA_FILE the certificates to trust.\n"
                     "Ends with status 0 when every request had its answer, whichever it was.",
                     "velmora-request");
    request::addTo(program, options);
    if (const auto end = readCommandLine(program, count, arguments)) return *end;

    QCoreApplication application(count, arguments);
    velmora::hosts::useQt();
    auto configuration = std::make_shared<velmora::VLConfiguration>();
    configuration->setDebugMode(options.debug);
    velmora::Velmora::initializeWithAppKey(options.appKey, configuration);

    request::Requests requests(options);
    QObject::connect(&requests, &request::Requests::finished, &application, &QCoreApplication::quit);
    QMetaObject::invokeMethod(&requests, &request::Requests::start, Qt::QueuedConnection);
    return QCoreApplication::exec();
}
