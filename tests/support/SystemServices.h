#pragma once

#include "harness/TemporaryDirectory.h"
#include "support/Environment.h"
#include "support/Program.h"
#include "support/Records.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velmora::test {

/// A system bus with mocks of the services that are named, and their parameters, as long as this lives.
class SystemServices {
public:
    /// Such as `{"modemmanager": {}, "geoclue": {"level": 0}}`.
    explicit SystemServices(const std::string& services) : program_({VELMORA_SYSTEM_SERVICES, services}) {
        const auto said = program_.line();
        EXPECT_NE(said, "") << "no system bus could be started";
        if (!said.empty())
            address_.emplace("DBUS_SYSTEM_BUS_ADDRESS", valueOf(said).at("bus").as_string().c_str());
    }

private:
    /// It ends when its input does.
    RunningProgram program_;
    std::optional<Environment> address_;
};

/// There is no system bus, as long as this lives.
class NoSystemServices {
    Environment address_{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus"};
};

/// There is a system bus that takes connections and never speaks, as long as this lives.
class SilentBus {
public:
    SilentBus() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (folder_ / "bus").string().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(listener_, 8), 0);
    }

    ~SilentBus() { ::close(listener_); }

    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

private:
    TemporaryDirectory folder_;
    const int listener_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
    Environment address_{"DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + (folder_ / "bus").string()).c_str()};
};

}  // namespace velmora::test
