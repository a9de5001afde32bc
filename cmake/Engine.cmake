# The engine: an object library that tests link with everything visible, and the shared library
# QORVAncdoe made of the same objects, which shows its public classes only.

add_library(ncdoe_objects OBJECT)
target_link_libraries(ncdoe_objects PUBLIC QORVAQvstream QORVAutl QORVAncmat QORVAncutil
                                    PRIVATE qorva_options)
target_include_directories(ncdoe_objects PUBLIC "${PROJECT_SOURCE_DIR}")
target_include_directories(ncdoe_objects SYSTEM PRIVATE "${QORVA_DLIB_INCLUDE_DIR}")
target_link_libraries(ncdoe_objects PRIVATE Boost::headers fmt::fmt-header-only)
if(OpenMP_CXX_FOUND)
  target_link_libraries(ncdoe_objects PRIVATE OpenMP::OpenMP_CXX)
endif()

add_library(QORVAncdoe SHARED)
add_library(QORVA::ncdoe ALIAS QORVAncdoe)
target_sources(QORVAncdoe PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}"
                                 FILES "${PROJECT_SOURCE_DIR}/QORVAncdoe.h")
target_link_libraries(QORVAncdoe PRIVATE $<BUILD_INTERFACE:ncdoe_objects>
                                 PUBLIC QORVAQvstream QORVAutl QORVAncmat QORVAncutil)
target_include_directories(QORVAncdoe PUBLIC
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/QORVAncdoe>)
target_compile_features(QORVAncdoe PUBLIC cxx_std_20)
set_target_properties(QORVAncdoe PROPERTIES VERSION ${PROJECT_VERSION}
                                            SOVERSION ${PROJECT_VERSION_MAJOR})

# Adds source files and public headers of one folder to the engine.
function(qorva_engine_sources)
  cmake_parse_arguments(ARG "" "" "HEADERS;SOURCES" ${ARGN})
  list(TRANSFORM ARG_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  list(TRANSFORM ARG_SOURCES PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  target_sources(ncdoe_objects PRIVATE ${ARG_SOURCES})
  target_sources(QORVAncdoe PUBLIC FILE_SET HEADERS FILES ${ARG_HEADERS})
endfunction()

add_subdirectory(frame)
add_subdirectory(designs)
add_subdirectory(evaluation)
