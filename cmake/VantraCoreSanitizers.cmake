# Sanitizer and fuzzing builds. The flags go on everything built in this tree (library, tests,
# examples, fuzz targets), because instrumented and plain code sharing one heap or one thread give
# false reports or none. Each such build has a build directory of its own (see the Makefile).
set(VANTRACORE_SANITIZE "" CACHE STRING
  "Sanitizers to build with, as for -fsanitize= (address,undefined or thread); empty for none")
option(VANTRACORE_BUILD_FUZZ "Build the libFuzzer targets of fuzz/ (needs clang++)" OFF)

set(VANTRACORE_SANITIZER_FLAGS "")
if(VANTRACORE_SANITIZE)
  # Every finding stops the program, so that ctest sees a failure rather than a line in a log.
  set(VANTRACORE_SANITIZER_FLAGS -fsanitize=${VANTRACORE_SANITIZE} -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
endif()
if(VANTRACORE_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "VANTRACORE_BUILD_FUZZ needs clang++ (-DCMAKE_CXX_COMPILER=clang++)")
  endif()
  # Coverage feedback from the library's own code, not only from the fuzz targets.
  list(APPEND VANTRACORE_SANITIZER_FLAGS -fsanitize=fuzzer-no-link)
endif()
add_compile_options(${VANTRACORE_SANITIZER_FLAGS})
add_link_options(${VANTRACORE_SANITIZER_FLAGS})
