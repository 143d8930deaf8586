#include "core/ShowStart.h"

#include <atomic>

namespace velmora {

namespace {

std::atomic<ShowStart::Function> start = nullptr;

}  // namespace

void ShowStart::set(Function function) noexcept { start = function; }

ShowStart::Function ShowStart::get() noexcept { return start; }

}  // namespace velmora
