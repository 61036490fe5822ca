# What every folder's CMakeLists.txt uses: flags, header libraries, test programs.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(KOVA_SANITIZE "" CACHE STRING "Sanitizers for everything, as -fsanitize takes them")
set(KOVA_GOOGLETEST_DIR "/usr/src/googletest" CACHE PATH "GoogleTest's sources (Debian: googletest)")
set(KOVA_HOME_DIR "${CMAKE_BINARY_DIR}/home" CACHE PATH "The runnable home folder that the build assembles")
set(KOVA_RUNTIME_DIR "${CMAKE_BINARY_DIR}/runtimes" CACHE PATH "Where the build leaves the runtime libraries")
set(KOVA_DEPS_DIR "${CMAKE_SOURCE_DIR}/build/deps" CACHE PATH "Where scripts/demo and scripts/test unpack Debian's source packages")
find_package(Threads REQUIRED)

# Lines are all that a trace of calls needs. What variables hold is half of a build's time: the Debug type has it.
string(REGEX REPLACE "-g$|-g " "-g1 " CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

if(KOVA_SANITIZE)
  add_compile_options(-O1 -fsanitize=${KOVA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KOVA_SANITIZE})
  if(KOVA_SANITIZE MATCHES undefined)
    # The check of virtual calls opens a pipe at each look; it would stop the tests that leave no descriptor free.
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()

# Our own code only: third-party sources keep their own warnings.
add_library(kova_flags INTERFACE)
target_compile_options(kova_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror)
target_include_directories(kova_flags INTERFACE "${CMAKE_SOURCE_DIR}/src")

# A header-only library from Debian. Its folder is linked into the build's own include folder, because a cross compiler
# must not see the host's /usr/include.
function(kova_find_header_library folder header package)
  find_path(KOVA_${folder}_INCLUDE "${header}" PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT KOVA_${folder}_INCLUDE)
    message(FATAL_ERROR "${header} is missing. Install it: apt-get install ${package}")
  endif()
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
  file(CREATE_LINK "${KOVA_${folder}_INCLUDE}/${folder}" "${CMAKE_BINARY_DIR}/include/${folder}" SYMBOLIC)
endfunction()
add_library(kova_header_libraries INTERFACE)
target_include_directories(kova_header_libraries SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/include")

# GoogleTest, Google Benchmark, libcsv and pugixml are built here from Debian's sources, with the flags of the preset and
# for its platform: the sanitizers and the cross compiler need their own builds.
macro(kova_add_third_party)
  set(INSTALL_GTEST OFF)
  add_subdirectory("${KOVA_GOOGLETEST_DIR}" googletest EXCLUDE_FROM_ALL SYSTEM)

  foreach(option ENABLE_TESTING ENABLE_INSTALL ENABLE_WERROR ENABLE_DOXYGEN INSTALL_DOCS)
    set(BENCHMARK_${option} OFF CACHE BOOL "" FORCE)
  endforeach()
  set(GIT_VERSION 0.0.0)  # Debian leaves the version to the caller; 0.0.0 stands for the project's own.
  add_subdirectory("${KOVA_DEPS_DIR}/benchmark" benchmark EXCLUDE_FROM_ALL SYSTEM)

  add_library(csv STATIC EXCLUDE_FROM_ALL "${KOVA_DEPS_DIR}/libcsv/libcsv.c")
  target_include_directories(csv SYSTEM PUBLIC "${KOVA_DEPS_DIR}/libcsv")
  set_target_properties(csv PROPERTIES C_STANDARD 90)

  add_library(pugixml STATIC EXCLUDE_FROM_ALL "${KOVA_DEPS_DIR}/pugixml/src/pugixml.cpp")
  target_include_directories(pugixml SYSTEM PUBLIC "${KOVA_DEPS_DIR}/pugixml/src")
endmacro()

set(KOVA_KIT_SOURCES kit.cpp kit_main.cpp kit_system.cpp)
list(TRANSFORM KOVA_KIT_SOURCES PREPEND "${CMAKE_SOURCE_DIR}/tests/kit/")

# Adds sources to the library proper (see src/CMakeLists.txt).
function(kova_sources)
  target_sources(kova_core PRIVATE ${ARGN})
endfunction()

# Test sources alone: optimising and checking them took more than half of a build's time. What they test has sources of
# its own, which are optimised and checked.
add_library(kova_test_flags INTERFACE)
target_compile_options(kova_test_flags INTERFACE -O0)
if(KOVA_SANITIZE MATCHES undefined)
  target_compile_options(kova_test_flags INTERFACE -fno-sanitize=undefined)
endif()
target_link_libraries(kova_test_flags INTERFACE kova_flags)

# What most test sources read first, read once. The linux preset goes without, so that each source proves to name what it
# needs.
function(kova_precompile_test_headers target)
  if(NOT TARGET kova_test_headers)
    file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/test_headers.cpp" CONTENT "int main() {}\n")
    add_executable(kova_test_headers EXCLUDE_FROM_ALL "${CMAKE_BINARY_DIR}/test_headers.cpp")
    target_link_libraries(kova_test_headers PRIVATE kova_test_flags gmock)
    target_precompile_headers(kova_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h> <filesystem> <fstream> <functional>
      <map> <set> <sstream> <thread>)
  endif()
  target_precompile_headers(${target} REUSE_FROM kova_test_headers)
endfunction()

# kova_test(name FILE... [FAKE] [KIT] [LIBS lib...] [TIMEOUT seconds]): one GoogleTest program and one CTest entry. FAKE
# links the in-memory backend in place of the platform's. KIT takes the kit's main, whose children are named functions of
# the same program (see tests/kit/kit.h).
function(kova_test name)
  if(KOVA_FUZZ)
    return()
  endif()
  cmake_parse_arguments(T "FAKE;KIT" "TIMEOUT" "LIBS" ${ARGN})
  set(backend kova_os)
  if(T_FAKE)
    set(backend kova_os_fake)
  endif()
  set(main gtest_main)
  if(T_KIT)
    set(main gtest)
    list(APPEND T_UNPARSED_ARGUMENTS ${KOVA_KIT_SOURCES})
  endif()
  add_executable(${name} ${T_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE kova_test_flags kova_core ${backend} ${T_LIBS} gmock ${main})
  if(T_KIT AND T_FAKE)
    target_compile_definitions(${name} PRIVATE KOVA_KIT_FAKE)
  endif()
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
  target_compile_definitions(${name} PRIVATE KOVA_SOURCE_DIR="${CMAKE_SOURCE_DIR}" KOVA_HOME_DIR="${KOVA_HOME_DIR}")
  kova_precompile_test_headers(${name})
  add_test(NAME ${name} COMMAND ${name})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT})
endfunction()

# Puts files into the build's home folder, after `target` is built.
function(kova_home target)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory "${KOVA_HOME_DIR}"
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${ARGN} "${KOVA_HOME_DIR}"
    VERBATIM)
endfunction()
