#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace velmora {

/// How an object of type `T` reads under `%@`. Specialise it with `static std::string of(const T&)`.
template <class T>
struct LogDescription;

/// One argument of `VLLog`: a number, a text, an object with a description, or nothing at all.
///
/// It refers to what it was made from and must not outlive it.
class LogArgument {
public:
    struct Object {
        const void* object;
        std::string (*describe)(const void*);
    };

    using Held = std::variant<std::monostate, std::int64_t, std::uint64_t, double, std::string_view, Object>;

    LogArgument(std::nullopt_t) noexcept {}

    LogArgument(std::nullptr_t) noexcept {}

    LogArgument(std::signed_integral auto number) noexcept : held_(std::int64_t{number}) {}

    LogArgument(std::unsigned_integral auto number) noexcept : held_(std::uint64_t{number}) {}

    LogArgument(std::floating_point auto number) noexcept : held_(static_cast<double>(number)) {}

    LogArgument(std::string_view text) noexcept : held_(text) {}

    LogArgument(const std::string& text) noexcept : held_(std::string_view(text)) {}

    LogArgument(const char* text) noexcept : held_(text != nullptr ? Held(std::string_view(text)) : Held()) {}

    template <class T>
    LogArgument(const std::optional<T>& value) {
        if (value) held_ = LogArgument(*value).held_;
    }

    /// Of an object whose class has a `LogDescription`.
    template <class T, class = decltype(LogDescription<T>::of(std::declval<const T&>()))>
    LogArgument(const T& value) noexcept : held_(Object{&value, &describe<T>}) {}

    [[nodiscard]] const Held& held() const noexcept { return held_; }

private:
    template <class T>
    static std::string describe(const void* object) {
        return LogDescription<T>::of(*static_cast<const T*>(object));
    }

    Held held_;
};

}  // namespace velmora
