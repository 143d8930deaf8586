#include "platform/Json.h"

#include "platform/JsonWriter.h"

#include <array>
#include <charconv>

#include <boost/json/basic_parser_impl.hpp>

namespace velmora::platform {

namespace {

namespace json = boost::json;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Builds values from parser events, as the library's own parser does, except that real numbers are read
/// again from their text: this version's own conversion is off by one unit in the last place for a third of
/// all doubles.
class Builder {
public:
    static constexpr std::size_t max_object_size = json::object::max_size();
    static constexpr std::size_t max_array_size = json::array::max_size();
    static constexpr std::size_t max_key_size = json::string::max_size();
    static constexpr std::size_t max_string_size = json::string::max_size();

    Builder() { stack_.reset(); }

    Value release() { return stack_.release(); }

    using Error = json::error_code;

    bool on_document_begin(Error&) { return true; }

    bool on_document_end(Error&) { return true; }

    bool on_object_begin(Error&) { return true; }

    bool on_object_end(std::size_t count, Error&) {
        stack_.push_object(count);
        return true;
    }

    bool on_array_begin(Error&) { return true; }

    bool on_array_end(std::size_t count, Error&) {
        stack_.push_array(count);
        return true;
    }

    bool on_key_part(json::string_view part, std::size_t, Error&) {
        stack_.push_chars(part);
        return true;
    }

    bool on_key(json::string_view part, std::size_t, Error&) {
        stack_.push_key(part);
        return true;
    }

    bool on_string_part(json::string_view part, std::size_t, Error&) {
        stack_.push_chars(part);
        return true;
    }

    bool on_string(json::string_view part, std::size_t, Error&) {
        stack_.push_string(part);
        return true;
    }

    bool on_number_part(json::string_view, Error&) { return true; }

    bool on_int64(std::int64_t number, json::string_view, Error&) {
        stack_.push_int64(number);
        return true;
    }

    bool on_uint64(std::uint64_t number, json::string_view, Error&) {
        stack_.push_uint64(number);
        return true;
    }

    bool on_double(double number, json::string_view text, Error&) {
        // The whole document is one buffer, so that `text` is the whole number. Out of range stays as it was
        // read.
        double exact = number;
        if (std::from_chars(text.data(), text.data() + text.size(), exact).ec == std::errc()) number = exact;
        stack_.push_double(number);
        return true;
    }

    bool on_bool(bool flag, Error&) {
        stack_.push_bool(flag);
        return true;
    }

    bool on_null(Error&) {
        stack_.push_null();
        return true;
    }

    bool on_comment_part(json::string_view, Error&) { return true; }

    bool on_comment(json::string_view, Error&) { return true; }

private:
    /// Room for the values of a text of some kilobytes, before the stack asks for more.
    std::array<unsigned char, 4096> room_;
    json::value_stack stack_{{}, room_.data(), room_.size()};
};

}  // namespace

std::optional<Value> parseJson(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    json::parse_options options;
    options.max_depth = kDeepestJson;
    json::basic_parser<Builder> parser(options);
    json::error_code error;
    const auto read = parser.write_some(false, text.data(), text.size(), error);
    if (error || read != text.size()) return std::nullopt;
    return parser.handler().release();
}

std::optional<std::string> writeJson(const Value& value) {
    JsonWriter writer;
    writer.value(value);
    return writer.take();
}

std::optional<std::string> writeJson(const Dictionary& dictionary) {
    JsonWriter writer;
    writer.dictionary(dictionary);
    return writer.take();
}

}  // namespace velmora::platform
