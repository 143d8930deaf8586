#pragma once

#include "platform/Value.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

/// Writes one JSON text (RFC 8259) from its beginning to its end, without a tree of values in between.
///
/// Whatever it is given, what comes out is JSON: a number that is not finite is left out together with its
/// key, and bytes that are not UTF-8 become U+FFFD. A whole number stays whole and a real one reads back
/// equal, as a real one.
class JsonWriter {
public:
    /// The key of the value, array or dictionary that follows; it must stay until then.
    void key(std::string_view key);

    void value(const Value& value);
    void dictionary(const Dictionary& dictionary);
    void beginDictionary();
    void endDictionary();
    void beginArray();
    void endArray();

    /// The text; absent when nothing was written, or when it was nested deeper than `kDeepestJson`.
    [[nodiscard]] std::optional<std::string> take();

private:
    void separate();
    void open(char bracket);
    void close(char bracket);
    void string(std::string_view text);
    void number(double number);
    template <class Integer>
    void integer(Integer number);

    /// Where the next so many bytes go.
    [[nodiscard]] char* room(std::size_t bytes) {
        if (text_.size() - size_ < bytes) grow(bytes);
        return text_.data() + size_;
    }

    void grow(std::size_t bytes);

    void put(char c) {
        *room(1) = c;
        ++size_;
    }

    void put(std::string_view text);
    void putEscaped(std::string_view text);

    /// The text is the first `size_` bytes; the rest is room, so that small pieces cost no more than
    /// their copying (bench-records, "records to text").
    std::string text_;
    std::size_t size_ = 0;
    std::optional<std::string_view> key_;
    std::size_t depth_ = 0;
    bool tooDeep_ = false;
    bool first_ = true;
};

}  // namespace velmora::platform
