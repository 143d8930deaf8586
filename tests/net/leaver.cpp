// Leaves main with transfers in flight, cancelled, queued and half delivered. Arguments: the URL of a server,
// and, if the server holds its answers back until then, the URL that tells it that main was left: what waits
// for the host is then still to start while the application's own exit work runs.

#include "harness/Await.h"
#include "platform/UrlSession.h"

#include <cstdlib>
#include <string>

using velmora::platform::UrlOutcome;
using velmora::platform::UrlRequest;
using velmora::platform::UrlSession;

namespace {

constexpr int kTransfers = 40;

auto& ends() {
    static auto* const instance = new velmora::test::Await<bool>;
    return *instance;
}

const char* tellUrl = nullptr;

void start(const std::string& url, bool cancels = false) {
    UrlRequest request;
    request.url = url;
    const auto task =
        UrlSession::shared().dataTask(request, [](const UrlOutcome& outcome) { ends().add(!outcome.error); });
    task->resume();
    if (cancels) task->cancel();
}

/// While the session is still there.
void waitForTheQueue() {
    start(tellUrl);
    if (!ends().count(1 + kTransfers + 1)) std::_Exit(3);
    for (const bool isGood : ends().values()) {
        if (!isGood) std::_Exit(4);
    }
}

/// When the session has left.
void startTooLate() { start(tellUrl); }

}  // namespace

int main(int count, char** arguments) {
    const std::string url = arguments[1];
    if (count > 2) {
        tellUrl = arguments[2];
        std::atexit(startTooLate);
        static_cast<void>(UrlSession::shared().dataTask({}, {}));
        std::atexit(waitForTheQueue);
        // So that all that a transfer needs is made by now, and would go before the exit work.
        start(url + "first");
        if (!ends().count(1)) return 2;
    }
    for (int i = 0; i < kTransfers; ++i) start(url, count == 2 && i % 7 == 0);
    return 0;
}
