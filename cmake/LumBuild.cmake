# How our own code is compiled. Nothing here reaches the targets of a project that embeds us.

# What holds unless whoever configures says otherwise. Nothing of it is kept for a project that embeds us.
macro(lum_set_defaults)
  if(PROJECT_IS_TOP_LEVEL)
    option(BUILD_SHARED_LIBS "Build a shared library rather than a static one" ON)
    get_property(LUM_HAS_CONFIGURATIONS GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    if(NOT CMAKE_BUILD_TYPE AND NOT LUM_HAS_CONFIGURATIONS)
      set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
    endif()
  elseif(NOT DEFINED BUILD_SHARED_LIBS)
    set(BUILD_SHARED_LIBS ON)
  endif()
endmacro()

if(PROJECT_IS_TOP_LEVEL)
  find_program(LUM_CCACHE ccache)
endif()
if(PROJECT_IS_TOP_LEVEL AND LUM_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # A precompiled header hides the macros and time stamps of the headers in it from ccache, which refuses to cache
  # such units unless it is told that both may be ignored.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
                                  ${LUM_CCACHE})
endif()

# Diagnostics for a target of ours. The full set is that of g++; clang counts other things as conversions, so there
# (fuzzing only) the conversions are left to g++.
function(lum_own_code target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees overlaps and overflows in its own std::string once it has inlined it (its bug 105651).
    target_compile_options(${target} PRIVATE -Wconversion -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds)
    if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
      # Sanitized, its std::regex looks uninitialized to it (its bug 105562).
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
    if(LUM_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()

# The headers that nearly every unit of ours includes and that we do not change.
set(LUM_PRECOMPILED <algorithm> <array> <atomic> <cstddef> <cstdint> <functional> <iosfwd> <istream> <map> <memory>
                    <mutex> <optional> <ostream> <span> <sstream> <string> <string_view> <utility> <vector>
                    <unicode/unistr.h>)

# lum_precompile(TARGET [REUSE OTHER]): OTHER's precompiled header serves when both are compiled with the same flags.
function(lum_precompile target)
  if(NOT LUM_PRECOMPILE)
    return()
  endif()
  cmake_parse_arguments(arg "" "REUSE" "" ${ARGN})
  if(arg_REUSE)
    target_precompile_headers(${target} REUSE_FROM ${arg_REUSE})
  else()
    target_precompile_headers(${target} PRIVATE ${LUM_PRECOMPILED})
  endif()
endfunction()

# Hidden visibility does not reach the instances of standard templates (namespace std asks for default visibility);
# the version script keeps them in. It cannot export what LUM_API does not mark.
function(lum_restrict_exports target)
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "SHARED_LIBRARY")
    return()
  endif()
  set(script ${CMAKE_CURRENT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE -Wl,--version-script=${script} -Wl,-Bsymbolic-functions)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
endfunction()

# The headers that users may include, relative to the source directory.
function(lum_public_headers result)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/lumcommon/*.h)
  list(FILTER headers EXCLUDE REGEX "Impl\\.h$|/detail/")
  set(${result} ${headers} PARENT_SCOPE)
endfunction()

# One source a public header: it includes the header first, so that it must compile alone, and twice.
function(lum_check_headers)
  lum_public_headers(headers)
  foreach(header ${headers})
    string(REPLACE "/" "_" stem ${header})
    set(source ${CMAKE_CURRENT_BINARY_DIR}/headers/${stem}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include <@header@>\n#include <@header@>\n" @ONLY)
    list(APPEND sources ${source})
  endforeach()
  add_library(lum_headers OBJECT ${sources})
  target_link_libraries(lum_headers PRIVATE lumcommon)
  lum_own_code(lum_headers)
endfunction()
