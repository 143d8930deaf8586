// Leaves main with transfers in flight, cancelled, queued and half delivered. Argument: the URL of a server
// that hangs.

#include "platform/UrlSession.h"

using velmora::platform::UrlOutcome;
using velmora::platform::UrlRequest;
using velmora::platform::UrlSession;

int main(int, char** arguments) {
    for (int i = 0; i < 50; ++i) {
        UrlRequest request;
        request.url = arguments[1];
        const auto task = UrlSession::shared().dataTask(request, [](const UrlOutcome&) {});
        task->resume();
        if (i % 7 == 0) task->cancel();
    }
    return 0;
}
