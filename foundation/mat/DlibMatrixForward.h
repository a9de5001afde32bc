#pragma once

// The name of dlib's matrix of double, for public signatures. Installed headers do without dlib's
// own, which take seconds to compile; who passes such a matrix includes them.

namespace dlib {

template <typename T>
class memory_manager_stateless_kernel_1;
struct row_major_layout;
template <typename T, long num_rows, long num_cols, typename mem_manager, typename layout>
class matrix;

}  // namespace dlib

namespace NCDOE {

/// dlib::matrix<double>.
using DlibMatrix = dlib::
    matrix<double, 0, 0, dlib::memory_manager_stateless_kernel_1<char>, dlib::row_major_layout>;

}  // namespace NCDOE
