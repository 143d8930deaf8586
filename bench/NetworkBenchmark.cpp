// What the network costs over bare libcurl: a POST with its answer read, a burst of GETs, and a download.

#include "harness/Await.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "net/VLClient.h"
#include "net/VLInternetCacher.h"
#include "net/VLWebServices.h"
#include "platform/FileManager.h"
#include "sandbox/ScriptedServer.h"
#include "support/BareCurl.h"
#include "support/Measure.h"
#include "support/Suggestions.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace velmora;
using namespace velmora::bench;

namespace {

constexpr std::size_t kVideoSize = std::size_t{50} * 1000 * 1000;

/// The server in a process of its own, so that its memory and its time are not counted here.
class ServerProcess {
public:
    ServerProcess() {
        std::array<int, 2> pipe{};
        if (::pipe(pipe.data()) != 0) std::exit(2);
        process_ = ::fork();
        if (process_ == 0) {
            serve(pipe[1]);
            ::_exit(0);
        }
        std::array<char, 100> text{};
        const auto size = ::read(pipe[0], text.data(), text.size());
        base.assign(text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    ~ServerProcess() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    std::string base;

private:
    static void serve(int port) {
        const auto list = sandbox::Script::answer(200, bench::answer(8));
        const auto small = sandbox::Script::answer(200, "seen");
        const auto video = sandbox::Script::answer(200, std::string(kVideoSize, 'v'));
        const sandbox::ScriptedServer server([&](const sandbox::SeenRequest& request) {
            if (request.target.starts_with("/video")) return video;
            return request.method == "POST" ? list : small;
        });
        const auto url = server.url("");
        if (::write(port, url.data(), url.size()) < 0) return;
        for (;;) ::pause();
    }

    pid_t process_ = 0;
};

long peakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// What this process has used of the processors, in milliseconds.
double processorMilliseconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

int compareDownloads(const std::string& base) {
    const auto folder = platform::FileManager::documentsDirectory();
    int number = 0;
    const auto ours = [&](const std::string& path) {
        test::Await<bool> end;
        const auto name = "video-" + std::to_string(++number);
        VLInternetCacher::sharedCacher().getFileAsyncFromUrl(
            base + path, name, [&](const auto&, const auto&) { end.add(true); },
            [&](const auto&, const auto&) { end.add(false); });
        if (!end.count(1) || !end.values().front()) std::exit(2);
    };
    const auto removeOurs = [&] { std::filesystem::remove(folder / ("video-" + std::to_string(number))); };
    ours("/x");
    removeOurs();
    const auto before = peakKilobytes();
    ours("/video");
    removeOurs();
    std::printf("  a 50 MB video: peak memory grew by %.1f MB (at most 4)\n",
                static_cast<double>(peakKilobytes() - before) / 1024);
    BareCurl curl;
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    std::vector<double> oursWork;
    std::vector<double> bareWork;
    for (int round = 0; round < 21; ++round) {
        const double start = processorMilliseconds();
        oursTimes.push_back(milliseconds([&] { ours("/video"); }));
        const double middle = processorMilliseconds();
        removeOurs();
        const auto file = (folder / "bare").string();
        const double next = processorMilliseconds();
        bareTimes.push_back(milliseconds([&] { curl.download(base + "/video", file); }));
        oursWork.push_back(middle - start);
        bareWork.push_back(processorMilliseconds() - next);
        std::filesystem::remove(file);
    }
    // The disk takes most of the time; what we do ourselves is seen in the processor's.
    return verdict("a 50 MB video, to the disk", median(oursTimes), median(bareTimes), 1.15) +
           verdict("the processor's time of it", median(oursWork), median(bareWork), 1.15);
}

int comparePosts(const std::string& base) {
    const std::string path = base + "/suggestions/";
    const Dictionary body{{"zoneId", "main-menu"}, {"clientRequestedCacheType", 2}};
    // To the success callback, which is where an application goes on; not to the thread that waits here.
    const auto ours = [&] {
        test::Await<double> end;
        const auto start = Clock::now();
        VLClient::sendRequestOfMethod(
            {.method = VLHttpRequestMethod::post,
             .url = path,
             .body = platform::writeJson(body),
             .receive = receive<VLSuggestionListDirectResponseModel>(),
             .success = [&](std::int64_t, const VLResult&) { end.add(millisecondsSince(start)); },
             .failure = [&](const VLClientError&) { std::exit(2); }});
        if (!end.count(1)) std::exit(2);
        return end.values().front();
    };
    BareCurl curl;
    const auto text = platform::writeJson(body).value();
    const auto bare = [&] {
        const auto value = boost::json::parse(curl.post(path, text, {"Content-Type: application/json"}));
        if (!value.is_object()) std::exit(2);
    };
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    for (int round = 0; round < 2000; ++round) {
        oursTimes.push_back(ours());
        bareTimes.push_back(milliseconds(bare));
    }
    const double bareTime = median(bareTimes);
    return verdict("a POST and its answer, p50", median(oursTimes), bareTime,
                   std::max((bareTime + kHandOvers) / bareTime, 2.5));
}

int compareBursts(const std::string& base) {
    constexpr std::size_t count = 2000;
    BareCurl curl;
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    std::vector<double> callTimes;
    for (int round = 0; round < 9; ++round) {
        oursTimes.push_back(milliseconds([&] {
            // One notification at the end: waiting is not what is measured.
            const auto left = std::make_shared<std::atomic<std::size_t>>(count);
            const auto end = std::make_shared<test::Await<bool>>();
            const auto one = [left, end](const auto&) {
                if (--*left == 0) end->add(true);
            };
            callTimes.push_back(milliseconds([&] {
                for (std::size_t i = 0; i < count; ++i) {
                    VLWebServices::callUrl(base + "/t", one, one);
                }
            }));
            if (!end->count(1)) std::exit(2);
        }));
        bareTimes.push_back(milliseconds([&] { curl.get(base + "/t", count); }));
    }
    std::printf("  2000 calls at once: %.1f us each for the caller (at most 10)\n",
                median(callTimes) * 1000 / count);
    return verdict("2000 calls at once, to the last end", median(oursTimes), median(bareTimes), 1.3);
}

}  // namespace

int main() {
    std::string folder = (std::filesystem::temp_directory_path() / "velmora-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return 2;
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    const ServerProcess server;

    heading("Over loopback, one server process");
    const int beyond = compareDownloads(server.base) + comparePosts(server.base) + compareBursts(server.base);
    std::filesystem::remove_all(folder);
    return beyond > 0 ? 1 : 0;
}
