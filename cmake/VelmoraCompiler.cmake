# What every target of this build compiles with: C++20, warnings as errors, hidden symbols, sanitizers on demand,
# and ccache where the machine has it.

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(VELMORA_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them: address,undefined or thread")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(VELMORA_CCACHE ccache)
if(VELMORA_CCACHE)
    # ccache takes a precompiled header into account only when told to.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${VELMORA_CCACHE})
endif()

add_library(velmora_compiler INTERFACE)
target_compile_features(velmora_compiler INTERFACE cxx_std_20)
target_compile_options(velmora_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast -Wcast-align -Wimplicit-fallthrough -Wextra-semi -Werror
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -fpch-instantiate-templates>
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op -fpch-preprocess>)

if(VELMORA_SANITIZE)
    target_compile_options(velmora_compiler INTERFACE
        -fsanitize=${VELMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(velmora_compiler INTERFACE -fsanitize=${VELMORA_SANITIZE})
endif()
