# Compiler settings that every target of this project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# Dev: fast to compile, assertions on in our code and in the standard library.
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1 -D_GLIBCXX_ASSERTIONS" CACHE STRING "" FORCE)
set(CMAKE_EXE_LINKER_FLAGS_DEV "" CACHE STRING "" FORCE)
set(CMAKE_SHARED_LINKER_FLAGS_DEV "" CACHE STRING "" FORCE)
mark_as_advanced(CMAKE_CXX_FLAGS_DEV CMAKE_EXE_LINKER_FLAGS_DEV CMAKE_SHARED_LINKER_FLAGS_DEV)

find_program(QORVA_CCACHE ccache)
if(QORVA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QORVA_CCACHE}")
endif()

# Linked PRIVATE by every target: warnings as errors, and no contraction of a*b+c, since a fast path
# must give bit for bit the results of its plain form.
add_library(qorva_options INTERFACE)
target_compile_options(qorva_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wsuggest-override -Werror
  -ffp-contract=off)
target_include_directories(qorva_options INTERFACE "${PROJECT_SOURCE_DIR}")
# Deliberate: options records have no virtual destructor and are held by shared handles that were made
# with the concrete type, which is what clang warns of.
target_compile_options(qorva_options INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>)
# g++ 12 sees overlapping copies in `"text" + string` where there are none, once it optimises.
target_compile_options(qorva_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(QORVA_SANITIZE)
  target_compile_options(qorva_options INTERFACE
    -fsanitize=${QORVA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(qorva_options INTERFACE -fsanitize=${QORVA_SANITIZE})
endif()
if(QORVA_BUILD_FUZZERS)
  # Coverage feedback must reach the code under test, not only the fuzz drivers.
  target_compile_options(qorva_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
