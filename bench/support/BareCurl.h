#pragma once

#include <string>
#include <vector>

#include <curl/curl.h>

namespace velmora::bench {

/// libcurl's multi interface as anyone would use it, in the calling thread.
class BareCurl {
public:
    using Headers = std::vector<std::string>;

    BareCurl();
    ~BareCurl();
    BareCurl(const BareCurl&) = delete;
    BareCurl& operator=(const BareCurl&) = delete;

    /// So many GETs, at most 8 at a time.
    void get(const std::string& url, int count);

    /// The answer's body. Headers as lines, "Name: value".
    std::string post(const std::string& url, const std::string& body, const Headers& headers);

    /// Flushed to the disk under a temporary name, then renamed.
    void download(const std::string& url, const std::string& file);

private:
    static CURL* make(const std::string& url, std::string& body);
    /// Waits for more when none has ended.
    int performAndCountEnded();

    CURLM* multi_;
    /// As many as the library sends: reading them is the server's work on either side.
    curl_slist* headers_ = nullptr;
};

}  // namespace velmora::bench
