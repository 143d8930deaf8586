// Logs "first", sets the debug mode to what it was not, and logs "second". With a word it is stored as on
// before that, without one nothing is. Says whether it is on in the end.

#include "log/VLLog.h"
#include "store/VLDefaults.h"

#include <iostream>

#include <velmora/velmora.h>

int main(int count, char**) {
    const bool isStored = count > 1;
    if (isStored) velmora::VLDefaults::setDebugMode(true);
    velmora::VLLog("first");
    velmora::Velmora::setDebugMode(!isStored);
    velmora::VLLog("second");
    std::cout << (velmora::Velmora::isDebugMode() ? "on" : "off");
}
