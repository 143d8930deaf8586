#include "harness/Await.h"
#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "platform/UrlSession.h"
#include "support/Certificates.h"
#include "support/Environment.h"
#include "support/Program.h"

#include <chrono>
#include <cstdio>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::UrlOutcome;
using platform::UrlRequest;
using platform::UrlSession;

constexpr const char* kServerProgram = "/usr/sbin/nghttpd";

UrlOutcome fetch(const std::string& url, const std::optional<std::filesystem::path>& file = {}) {
    Await<UrlOutcome> end;
    const auto add = [&](UrlOutcome outcome) { end.add(std::move(outcome)); };
    UrlRequest request;
    request.url = url;
    auto& session = UrlSession::shared();
    const auto task = file ? session.downloadTask(request, *file, add) : session.dataTask(request, add);
    task->resume();
    EXPECT_TRUE(end.count(1));
    return end.values().front();
}

/// A port that is bound and not listened on, with what the server sets too: it alone can have it.
class ReservedPort {
public:
    ReservedPort() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const int yes = 1;
        ::setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* const address = reinterpret_cast<sockaddr*>(&address_);
        socklen_t size = sizeof address_;
        EXPECT_EQ(::bind(socket_, address, size), 0);
        EXPECT_EQ(::getsockname(socket_, address, &size), 0);
    }
    ~ReservedPort() { ::close(socket_); }
    ReservedPort(const ReservedPort&) = delete;
    ReservedPort& operator=(const ReservedPort&) = delete;

    [[nodiscard]] int number() const { return ntohs(address_.sin_port); }

private:
    int socket_;
    sockaddr_in address_{};
};

// The server speaks nothing else.
TEST(Http2, ExchangesThatShareAConnectionAreEachWhole) {
    if (::access(kServerProgram, X_OK) != 0) GTEST_SKIP() << kServerProgram << " is not installed";
    const TemporaryDirectory folder;
    const auto certificates = Certificates::makeFor("127.0.0.1");
    writeContent(folder / "certificate", certificates->certificate);
    writeContent(folder / "key", certificates->key);
    writeContent(folder / "large", std::string(3'000'000, 'l'));
    for (int i = 0; i < 50; ++i) writeContent(folder / std::to_string(i), "body " + std::to_string(i));
    const ReservedPort reserved;
    const auto port = std::to_string(reserved.number());
    // It does not end by itself, nor with a test that dies.
    RunningProgram server({"setpriv", "--pdeathsig=KILL", "sh", "-c", "exec \"$@\" >\"$0\"",
                           folder / "journal", kServerProgram, "--verbose", "--address=127.0.0.1", "--htdocs",
                           folder.path(), port, folder / "key", folder / "certificate"});
    const Environment trust("VELMORA_CA_FILE", certificates->authorityFile().c_str());
    const auto base = "https://127.0.0.1:" + port + "/";
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (fetch(base + "0").error && std::chrono::steady_clock::now() < end) continue;

    Await<std::string> bodies;
    for (int i = 0; i < 50; ++i) {
        UrlRequest request;
        request.url = base + std::to_string(i);
        UrlSession::shared()
            .dataTask(request, [&](const UrlOutcome& outcome) { bodies.add(outcome.data.value_or("none")); })
            ->resume();
    }
    EXPECT_TRUE(bodies.count(50));
    for (int i = 0; i < 50; ++i)
        EXPECT_THAT(bodies.values(), testing::Contains("body " + std::to_string(i)).Times(1));

    EXPECT_FALSE(fetch(base + "large", folder / "copy").error);
    EXPECT_EQ(contentOf(folder / "copy"), contentOf(folder / "large"));
    const auto missing = fetch(base + "missing");
    EXPECT_FALSE(missing.error);
    EXPECT_EQ(missing.response ? missing.response->statusCode : 0, 404);
    server.kill();
    EXPECT_THAT(contentOf(folder / "journal"),
                testing::AllOf(testing::HasSubstr("[id=1]"), testing::Not(testing::HasSubstr("[id=2]"))));
}

}  // namespace

}  // namespace velmora::test
