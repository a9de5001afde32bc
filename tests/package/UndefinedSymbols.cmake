# Run by ctest; see CMakeLists.txt. dlib is used by its headers alone: what is left for a linker to find
# would tie hosts to dlib's compiled library, or to a BLAS.
execute_process(COMMAND "${NM}" --dynamic --undefined-only --demangle "${LIBRARY}"
                RESULT_VARIABLE result OUTPUT_VARIABLE symbols ERROR_VARIABLE symbols)
if(NOT result EQUAL 0 OR NOT symbols MATCHES "std::")
  message(FATAL_ERROR "${NM} does not list the symbols of ${LIBRARY}:\n${symbols}")
endif()
string(REGEX MATCHALL "[^\n]*(dlib|DLIB|USER_ERROR|cblas_|[ds]ge[a-z]+_|[ds]syrk_|[ds]potr[a-z]_)[^\n]*"
       found "${symbols}")
if(found)
  list(JOIN found "\n" lines)
  message(FATAL_ERROR "${LIBRARY} wants of others:\n${lines}")
endif()
