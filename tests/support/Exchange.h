#pragma once

#include <map>
#include <string>

#include <boost/json.hpp>
#include <curl/curl.h>

namespace velmora::test {

struct Answer {
    long status = 0;
    /// Names as the server wrote them.
    std::map<std::string, std::string> headers = {};
    std::string body = {};

    [[nodiscard]] boost::json::object json() const { return boost::json::parse(body).as_object(); }
};

struct Question {
    std::string url;
    std::string method = "GET";
    std::map<std::string, std::string> headers = {};
    std::string body = {};
    std::string authorityFile = {};
};

/// A client that keeps its connections as long as it lives.
class Client {
public:
    Client() = default;
    ~Client() { curl_easy_cleanup(handle_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Status 0 when there was no answer.
    Answer ask(const Question& question) {
        Answer answer;
        curl_slist* headers = nullptr;
        for (const auto& [name, value] : question.headers)
            headers = curl_slist_append(headers, (name + ": " + value).c_str());
        curl_easy_reset(handle_);
        curl_easy_setopt(handle_, CURLOPT_URL, question.url.c_str());
        curl_easy_setopt(handle_, CURLOPT_CUSTOMREQUEST, question.method.c_str());
        curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers);
        curl_easy_setopt(handle_, CURLOPT_CAINFO, question.authorityFile.c_str());
        curl_easy_setopt(handle_, CURLOPT_TIMEOUT, 60L);
        if (!question.body.empty()) {
            curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, question.body.c_str());
            curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE, static_cast<long>(question.body.size()));
        }
        curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &Client::keepBody);
        curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &answer);
        curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, &Client::keepHeader);
        curl_easy_setopt(handle_, CURLOPT_HEADERDATA, &answer);
        if (curl_easy_perform(handle_) == CURLE_OK)
            curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &answer.status);
        curl_slist_free_all(headers);
        return answer;
    }

private:
    static std::size_t keepBody(const char* bytes, std::size_t one, std::size_t count, Answer* answer) {
        answer->body.append(bytes, one * count);
        return one * count;
    }

    static std::size_t keepHeader(const char* bytes, std::size_t one, std::size_t count, Answer* answer) {
        const std::string line(bytes, one * count);
        if (const auto colon = line.find(": "); colon != std::string::npos)
            answer->headers[line.substr(0, colon)] = line.substr(colon + 2, line.size() - colon - 4);
        return one * count;
    }

    CURL* handle_ = curl_easy_init();
};

inline Answer ask(const Question& question) { return Client().ask(question); }

}  // namespace velmora::test
