# Installation: libraries, public headers, the CMake package QORVAncdoe (target QORVA::ncdoe) and a
# pkg-config file.

include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/QORVAncdoe")

set_target_properties(QORVAncdoe PROPERTIES EXPORT_NAME ncdoe)
set_target_properties(QORVAQvstream PROPERTIES EXPORT_NAME Qvstream)
set_target_properties(QORVAutl PROPERTIES EXPORT_NAME utl)
set_target_properties(QORVAncmat PROPERTIES EXPORT_NAME ncmat)
set_target_properties(QORVAncutil PROPERTIES EXPORT_NAME ncutil)

# The libraries stand in one folder and find one another there, wherever it is.
set_target_properties(QORVAncdoe QORVAncutil QORVAncmat QORVAutl QORVAQvstream
  PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS QORVAQvstream QORVAutl QORVAncmat QORVAncutil QORVAncdoe
  EXPORT QORVAncdoeTargets
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/QORVAncdoe")
install(EXPORT QORVAncdoeTargets NAMESPACE QORVA:: DESTINATION "${package_dir}")

configure_package_config_file(cmake/QORVAncdoeConfig.cmake.in
  "${PROJECT_BINARY_DIR}/QORVAncdoeConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/QORVAncdoeConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/QORVAncdoeConfig.cmake"
              "${PROJECT_BINARY_DIR}/QORVAncdoeConfigVersion.cmake"
        DESTINATION "${package_dir}")

# The file finds its prefix from where it stands, so an installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/QORVAncdoe.pc.in "${PROJECT_BINARY_DIR}/QORVAncdoe.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/QORVAncdoe.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

if(QORVA_BUILD_HOST)
  set_target_properties(ncdoe PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS ncdoe RUNTIME)
endif()
