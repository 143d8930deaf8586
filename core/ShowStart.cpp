#include "core/ShowStart.h"

#include <atomic>

namespace velmora {

namespace {

std::atomic<ShowStart::Function> start = nullptr;
std::atomic<void (*)()> end = nullptr;

}  // namespace

void ShowStart::set(Function function, void (*endAll)()) noexcept {
    start = function;
    end = endAll;
}

ShowStart::Function ShowStart::get() noexcept { return start; }

void ShowStart::endAll() noexcept {
    if (const auto function = end.load()) function();
}

}  // namespace velmora
