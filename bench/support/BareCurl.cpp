#include "support/BareCurl.h"

#include <cstdio>
#include <cstdlib>
#include <deque>

#include <fcntl.h>
#include <unistd.h>

namespace velmora::bench {

namespace {

std::size_t keep(char* bytes, std::size_t one, std::size_t size, void* text) {
    static_cast<std::string*>(text)->append(bytes, one * size);
    return one * size;
}

/// A file, and how much of it was handed to the disk already.
struct Output {
    int descriptor;
    off_t written = 0;
    off_t handedOver = 0;
};

std::size_t store(char* bytes, std::size_t one, std::size_t size, void* output) {
    constexpr off_t kHandOver = off_t{1024} * 1024;
    auto& file = *static_cast<Output*>(output);
    size *= one;
    if (::write(file.descriptor, bytes, size) != static_cast<ssize_t>(size)) return CURL_WRITEFUNC_ERROR;
    file.written += static_cast<off_t>(size);
    if (file.written - file.handedOver >= kHandOver) {
        ::sync_file_range(file.descriptor, file.handedOver, file.written - file.handedOver,
                          SYNC_FILE_RANGE_WRITE);
        file.handedOver = file.written;
    }
    return size;
}

}  // namespace

BareCurl::BareCurl() : multi_(curl_multi_init()) {
    for (const char* line :
         {"User-Agent: bare/0", "Content-Type: application/json", "Accept: application/json"})
        headers_ = curl_slist_append(headers_, line);
}

BareCurl::~BareCurl() {
    curl_multi_cleanup(multi_);
    curl_slist_free_all(headers_);
}

void BareCurl::get(const std::string& url, int count) {
    std::deque<std::string> bodies(static_cast<std::size_t>(count));
    int started = 0;
    int ended = 0;
    while (ended < count) {
        for (; started < count && started - ended < 8; ++started) {
            auto* handle = make(url, bodies[static_cast<std::size_t>(started)]);
            curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers_);
            curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
            curl_multi_add_handle(multi_, handle);
        }
        ended += performAndCountEnded();
    }
}

std::string BareCurl::post(const std::string& url, const std::string& body, const Headers& headers) {
    std::string answer;
    auto* handle = make(url, answer);
    curl_slist* list = nullptr;
    for (const auto& header : headers) list = curl_slist_append(list, header.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.data());
    curl_multi_add_handle(multi_, handle);
    while (performAndCountEnded() == 0) continue;
    curl_slist_free_all(list);
    return answer;
}

void BareCurl::download(const std::string& url, const std::string& file) {
    constexpr long kReceiveBuffer = 128L * 1024;
    const auto temporary = file + ".part";
    Output output{::open(temporary.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600)};
    auto* handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBuffer);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, store);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &output);
    curl_multi_add_handle(multi_, handle);
    while (performAndCountEnded() == 0) continue;
    if (::fsync(output.descriptor) != 0 || ::close(output.descriptor) != 0 ||
        std::rename(temporary.c_str(), file.c_str()) != 0)
        std::exit(2);
}

CURL* BareCurl::make(const std::string& url, std::string& body) {
    auto* handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, keep);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    return handle;
}

int BareCurl::performAndCountEnded() {
    int running = 0;
    int left = 0;
    int ended = 0;
    curl_multi_perform(multi_, &running);
    while (const auto* message = curl_multi_info_read(multi_, &left)) {
        auto* handle = message->easy_handle;
        curl_multi_remove_handle(multi_, handle);
        curl_easy_cleanup(handle);
        ++ended;
    }
    if (ended == 0) curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
    return ended;
}

}  // namespace velmora::bench
