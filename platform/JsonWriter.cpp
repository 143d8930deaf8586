#include "platform/JsonWriter.h"

#include "platform/Json.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace velmora::platform {

namespace {

std::string_view view(boost::json::string_view text) { return {text.data(), text.size()}; }

/// Whether a byte may stand in a JSON string as it is, on its own.
constexpr auto kPlain = [] {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0x20; byte < 0x80; ++byte) plain[byte] = byte != '"' && byte != '\\';
    return plain;
}();

/// Whether the whole text may stand as it is, which most texts may.
bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return kPlain[static_cast<unsigned char>(c)]; });
}

/// The byte as it is escaped in a JSON string.
std::string escaped(char c) {
    switch (c) {
    case '"': return "\\\"";
    case '\\': return "\\\\";
    case '\b': return "\\b";
    case '\f': return "\\f";
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\t': return "\\t";
    default: break;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return std::string("\\u00") + digits[byte >> 4U] + digits[byte & 15U];
}

}  // namespace

void JsonWriter::key(std::string_view key) { key_ = key; }

void JsonWriter::value(const Value& value) {
    if (tooDeep_) return;
    switch (value.kind()) {
    case boost::json::kind::object: return dictionary(value.get_object());
    case boost::json::kind::array:
        beginArray();
        for (const auto& element : value.get_array()) this->value(element);
        return endArray();
    case boost::json::kind::double_: return number(value.get_double());
    default: break;
    }
    separate();
    switch (value.kind()) {
    case boost::json::kind::string: return string(view(value.get_string()));
    case boost::json::kind::int64: return integer(value.get_int64());
    case boost::json::kind::uint64: return integer(value.get_uint64());
    case boost::json::kind::bool_:
        return put(value.get_bool() ? std::string_view("true") : std::string_view("false"));
    default: return put("null");
    }
}

void JsonWriter::dictionary(const Dictionary& dictionary) {
    beginDictionary();
    for (const auto& entry : dictionary) {
        key(view(entry.key()));
        value(entry.value());
    }
    endDictionary();
}

void JsonWriter::beginDictionary() { open('{'); }

void JsonWriter::endDictionary() { close('}'); }

void JsonWriter::beginArray() { open('['); }

void JsonWriter::endArray() { close(']'); }

std::optional<std::string> JsonWriter::take() {
    if (tooDeep_ || size_ == 0) return std::nullopt;
    text_.resize(size_);
    size_ = 0;
    return std::move(text_);
}

void JsonWriter::separate() {
    if (!first_) put(',');
    first_ = false;
    if (!key_) return;
    string(*key_);
    put(':');
    key_.reset();
}

void JsonWriter::open(char bracket) {
    separate();
    put(bracket);
    first_ = true;
    if (++depth_ > kDeepestJson) tooDeep_ = true;
}

void JsonWriter::close(char bracket) {
    put(bracket);
    first_ = false;
    --depth_;
}

void JsonWriter::string(std::string_view text) {
    if (!isPlain(text)) return putEscaped(text);
    // The common case, with one look at the room that is left.
    char* at = room(text.size() + 2);
    *at++ = '"';
    at = std::copy(text.begin(), text.end(), at);
    *at = '"';
    size_ += text.size() + 2;
}

void JsonWriter::putEscaped(std::string_view text) {
    put('"');
    const char* at = text.data();
    const char* const end = at + text.size();
    const char* written = at;
    while (at != end) {
        const char* const special = at;
        if (kPlain[static_cast<unsigned char>(*at)]) {
            ++at;
            continue;
        }
        if (static_cast<unsigned char>(*at) >= 0x80) {
            if (passUtf8Character(at, end)) continue;
            put({written, special});
            put("\xEF\xBF\xBD");
        } else {
            put({written, special});
            put(escaped(*at++));
        }
        written = at;
    }
    put({written, end});
    put('"');
}

void JsonWriter::number(double number) {
    if (!std::isfinite(number)) return key_.reset();
    separate();
    std::array<char, 32> digits{};
    const auto* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const std::string_view shortest(digits.data(), end);
    put(shortest);
    // Without a point or an exponent it would read back as a whole number.
    if (shortest.find_first_of(".e") == std::string_view::npos) put(".0");
}

template <class Integer>
void JsonWriter::integer(Integer number) {
    constexpr std::size_t longest = 20;
    char* const start = room(longest);
    size_ += static_cast<std::size_t>(std::to_chars(start, start + longest, number).ptr - start);
}

void JsonWriter::grow(std::size_t bytes) { text_.resize(std::max(2 * text_.size(), size_ + bytes + 256)); }

void JsonWriter::put(std::string_view text) {
    std::copy(text.begin(), text.end(), room(text.size()));
    size_ += text.size();
}

}  // namespace velmora::platform
