#include "platform/UrlSession.h"
#include "support/Await.h"
#include "support/Certificates.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/Process.h"
#include "support/TemporaryDirectory.h"

#include <chrono>
#include <cstdio>

#include <unistd.h>

#include <boost/asio.hpp>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::UrlOutcome;
using platform::UrlRequest;
using platform::UrlSession;

using Tcp = boost::asio::ip::tcp;

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

// The server speaks nothing else.
TEST(Http2, ExchangesThatShareAConnectionAreEachWhole) {
    if (::access(kServerProgram, X_OK) != 0) GTEST_SKIP() << kServerProgram << " is not installed";
    const TemporaryDirectory folder;
    const auto certificates = Certificates::makeFor("127.0.0.1");
    writeContent(folder / "certificate", certificates->certificate);
    writeContent(folder / "key", certificates->key);
    writeContent(folder / "large", std::string(3'000'000, 'l'));
    for (int i = 0; i < 50; ++i) writeContent(folder / std::to_string(i), "body " + std::to_string(i));
    // Bound and not listened on, with what the server sets too: it alone can have the port.
    boost::asio::io_context context;
    Tcp::socket reserved(context, Tcp::v4());
    reserved.set_option(Tcp::socket::reuse_address(true));
    reserved.bind({boost::asio::ip::address_v4::loopback(), 0});
    const auto port = std::to_string(reserved.local_endpoint().port());
    const Process server([&] {
        if (std::freopen((folder / "journal").c_str(), "w", stdout) == nullptr) return;
        ::execl(kServerProgram, kServerProgram, "--verbose", "--address=127.0.0.1", "--htdocs",
                folder.path().c_str(), port.c_str(), (folder / "key").c_str(),
                (folder / "certificate").c_str(), nullptr);
    });
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
    ASSERT_TRUE(bodies.count(50));
    for (int i = 0; i < 50; ++i)
        EXPECT_THAT(bodies.values(), testing::Contains("body " + std::to_string(i)).Times(1));

    EXPECT_FALSE(fetch(base + "large", folder / "copy").error);
    EXPECT_EQ(contentOf(folder / "copy"), contentOf(folder / "large"));
    const auto missing = fetch(base + "missing");
    EXPECT_FALSE(missing.error);
    EXPECT_EQ(missing.response->statusCode, 404);
    EXPECT_THAT(contentOf(folder / "journal"),
                testing::AllOf(testing::HasSubstr("[id=1]"), testing::Not(testing::HasSubstr("[id=2]"))));
}

}  // namespace

}  // namespace velmora::test
