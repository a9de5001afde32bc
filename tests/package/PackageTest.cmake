# Run by ctest; see CMakeLists.txt.

function(must_run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${result}:\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(must_print_the_design)
  must_run(${ARGN})
  if(NOT out MATCHES "11 runs of 3 factors, the last at 165 165 165")
    message(FATAL_ERROR "The outside program printed:\n${out}")
  endif()
endfunction()

set(prefix "${WORK_DIR}/prefix")
file(REMOVE_RECURSE "${WORK_DIR}")
must_run("${CMAKE_COMMAND}" --install "${BINARY_DIR}" --prefix "${prefix}")

# Nothing but the public interface may be needed: the program is built in a folder of its own.
file(COPY "${OUTSIDE_DIR}" DESTINATION "${WORK_DIR}")
set(sanitize_flags "")
if(SANITIZE)
  set(sanitize_flags "-fsanitize=${SANITIZE}")
endif()
must_run("${CMAKE_COMMAND}" -S "${WORK_DIR}/outside" -B "${WORK_DIR}/build" -G Ninja
         "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX}"
         "-DCMAKE_CXX_FLAGS=${sanitize_flags}")
must_run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
must_print_the_design("${WORK_DIR}/build/outside")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
must_run("${PKG_CONFIG}" --cflags --libs QORVAncdoe)
string(STRIP "${out}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
must_run("${CXX}" -std=c++20 ${sanitize_flags} "${OUTSIDE_DIR}/Outside.cpp"
         -o "${WORK_DIR}/outside-pkg" ${flags} "-Wl,-rpath,${prefix}/${LIBDIR}")
must_print_the_design("${WORK_DIR}/outside-pkg")
