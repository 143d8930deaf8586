// A window to ask for ads and to see them. Without a display it does so by itself, and leaves a report.

#include "AdDesk.h"
#include "Arguments.h"
#include "AutoRun.h"
#include "DeviceFacts.h"
#include "MainWindow.h"
#include "Theme.h"

#include <velmora/hosts/qt.h>
#include <velmora/velmora.h>

#include <iostream>
#include <optional>

#include <QApplication>
#include <QJsonDocument>
#include <QPalette>
#include <QTimer>

namespace {

void initialise(bool debug) {
    auto configuration = std::make_shared<velmora::VLConfiguration>();
    configuration->setDebugMode(debug);
    velmora::Velmora::initializeWithAppKey("demo-key", configuration);
}

void print(const demo::Event& event) {
    std::cout << QJsonDocument(demo::toJson(event)).toJson(QJsonDocument::Compact).constData() << std::endl;
}

bool isDarkDesktop() { return QApplication::palette().color(QPalette::Window).lightness() < 128; }

}  // namespace

int main(int count, char** words) {
    demo::Arguments arguments;
    if (const auto end = demo::read(count, words, arguments)) return *end;
    demo::prepareDisplay(arguments.size);
    QApplication application(count, words);
    velmora::hosts::useQt();
    QApplication::setStyle("Fusion");
    (arguments.dark || isDarkDesktop() ? demo::Theme::dark() : demo::Theme::light()).apply();
    initialise(arguments.debug);

    demo::AdDesk desk;
    if (arguments.json) QObject::connect(&desk, &demo::AdDesk::happened, &print);
    demo::DeviceFacts facts(arguments.facts);
    demo::MainWindow window(desk, facts, arguments);
    window.show();
    facts.look();

    std::optional<demo::AutoRun> run;
    if (arguments.isAuto) {
        run.emplace(desk, window, facts, arguments);
        QObject::connect(&*run, &demo::AutoRun::finished, &application, &QApplication::exit,
                         Qt::QueuedConnection);
        // When the window is there to show something over.
        QTimer::singleShot(500, &*run, &demo::AutoRun::start);
    }
    return QApplication::exec();
}
