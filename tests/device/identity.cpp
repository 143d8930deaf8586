// Prints how this application names its device to the service, a line each; "-" for what is absent.

#include "device/VLDeviceAppInfo.h"

#include <iostream>

int main() {
    using velmora::VLDeviceAppInfo;
    for (const auto& fact : {VLDeviceAppInfo::deviceIdentifier(), VLDeviceAppInfo::advertisingIdentifier()})
        std::cout << fact.value_or("-") << '\n';
}
