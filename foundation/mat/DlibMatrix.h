#pragma once

// The one door to dlib. Every other file includes this header instead of dlib's own, since all of
// the program must see the same switches:
// - no BLAS and no LAPACK, so that results do not depend on the machine, and nothing to link;
// - no symbol that ties the program to the compiled dlib library;
// - bounds and shapes checked in every configuration: a violation raises dlib::fatal_error.

#ifdef DLIB_MATRIx_HEADER
#error "Include foundation/mat/DlibMatrix.h instead of dlib/matrix.h"
#endif

#define DLIB_TEST_FOR_ODR_VIOLATIONS_H_
#include <dlib/assert.h>
#undef DLIB_USE_BLAS
#undef DLIB_USE_LAPACK
#undef DLIB_JPEG_SUPPORT
#undef DLIB_PNG_SUPPORT
#undef DLIB_ASSERT
#undef DLIB_IF_ASSERT
#undef DLIB_DISABLE_ASSERTS
#define ENABLE_ASSERTS
#define DLIB_ASSERT(...) DLIB_CASSERT(__VA_ARGS__)
#define DLIB_IF_ASSERT(expression) expression
#include <dlib/matrix.h>

#include <type_traits>

#include "foundation/mat/DlibMatrixForward.h"

static_assert(std::is_same_v<NCDOE::DlibMatrix, dlib::matrix<double>>);
