#pragma once

/// Marks what the shared library lets applications link to; everything else stays inside it.
#define VELMORA_EXPORT __attribute__((visibility("default")))

/// Takes one member of an exported class out again.
#define VELMORA_INTERNAL __attribute__((visibility("hidden")))
