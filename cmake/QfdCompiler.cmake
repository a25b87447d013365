# Language level, warnings and sanitizers, the same for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Only what is marked leaves a shared library; see platform/Visibility.h.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(QFD_CCACHE ccache)
if(QFD_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QFD_CCACHE})
endif()

add_library(qfd_options INTERFACE)
target_compile_options(qfd_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # Displays show 32-bit float arithmetic exactly as written: no fused operations, no
  # wider intermediate results, on any compiler and at any optimisation level.
  -ffp-contract=off
  # Optimising, g++ 12 takes std::string's own copying for an overlap that can't be, in plain
  # `"literal" + text`. Mended in g++ 13; clang, which has no such warning, builds everything too.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
if(QFD_WARNINGS_AS_ERRORS)
  target_compile_options(qfd_options INTERFACE -Werror)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86")
  target_compile_options(qfd_options INTERFACE -msse2 -mfpmath=sse)
endif()

if(QFD_SANITIZE)
  add_compile_options(-fsanitize=${QFD_SANITIZE} -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${QFD_SANITIZE})
  if(QFD_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
    add_compile_definitions(QFD_UNDEFINED_SANITIZER)  # for the one test that it can't bear
  endif()
endif()
