# Libraries this project stands on. Each is used inside source files only, so that a program which
# links the installed engine needs none of their headers.

find_package(fmt REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(Eigen3 3.4 REQUIRED NO_MODULE)
find_package(Boost 1.74 REQUIRED)
# Headers only; see foundation/mat/DlibMatrix.h.
find_path(QORVA_DLIB_INCLUDE_DIR dlib/matrix.h REQUIRED)
mark_as_advanced(QORVA_DLIB_INCLUDE_DIR)
# One loop is shared by threads where the compiler can; its results are the same without.
# Not under the thread sanitizer, which does not see how OpenMP's runtime orders its threads.
if(NOT QORVA_SANITIZE MATCHES "thread")
  find_package(OpenMP COMPONENTS CXX)
endif()
if(QORVA_BUILD_HOST)
  find_package(CLI11 REQUIRED)
endif()
if(QORVA_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(QORVA_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
