#include "harness/Await.h"
#include "platform/UrlSession.h"
#include "sandbox/ScriptedServer.h"

#include <dlfcn.h>
#include <netdb.h>
#include <sstream>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

constexpr const char* kNameThatHangs = "hangs.example";

/// What ends the look-ups that hang.
Await<bool>& answer() {
    static auto* const instance = new Await<bool>;
    return *instance;
}

}  // namespace

}  // namespace velmora::test

// In place of the system's, for libcurl too: name servers that never answer cannot be had on a machine of
// one's own.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** result) {
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto systems = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    if (name == nullptr || std::string_view(name) != velmora::test::kNameThatHangs)
        return systems(name, service, hints, result);
    static_cast<void>(velmora::test::answer().count(1));
    return EAI_AGAIN;
}

namespace velmora::test {

namespace {

using platform::UrlError;
using platform::UrlOutcome;
using platform::UrlRequest;
using platform::UrlSession;

TEST(Lookup, OneThatHangsIsGivenUpInTimeAndHoldsUpNothing) {
    UrlSession::setIdleTimeout(std::chrono::seconds(2));
    const ScriptedServer server([](const SeenRequest&) { return Script::answer(200, ""); });
    Await<int> ends;
    const auto start = [&](const std::string& url) {
        UrlRequest request;
        request.url = url;
        const auto task = UrlSession::shared().dataTask(std::move(request), [&](const UrlOutcome& outcome) {
            ends.add(outcome.error ? outcome.error->code : 0);
        });
        task->resume();
        return task;
    };
    // In steps: of one expression g++ 12 says that it writes out of bounds.
    std::ostringstream address;
    address << "http://" << kNameThatHangs << "/";
    const auto hanging = address.str();
    start(hanging);
    start(hanging);
    const auto cancelled = start(hanging);
    start(server.url("/1"));
    EXPECT_TRUE(ends.count(1));
    cancelled->cancel();
    EXPECT_TRUE(ends.count(2));
    start(server.url("/2"));
    EXPECT_TRUE(ends.count(5));
    answer().add(true);
    EXPECT_THAT(ends.values(),
                testing::ElementsAre(0, UrlError::cancelled, 0, UrlError::timedOut, UrlError::timedOut));
}

}  // namespace

}  // namespace velmora::test
