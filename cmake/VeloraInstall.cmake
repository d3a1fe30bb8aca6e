# Installation: headers, the library, a CMake package (find_package(VeloraUtils) gives
# VeloraUtils::VeloraUtils) and a pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS VeloraUtils EXPORT VeloraUtilsTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/VeloraUtils.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/VeloraUtils DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(VELORA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/VeloraUtils)
install(EXPORT VeloraUtilsTargets NAMESPACE VeloraUtils:: DESTINATION ${VELORA_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VeloraUtilsConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VeloraUtilsConfig.cmake INSTALL_DESTINATION ${VELORA_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VeloraUtilsConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VeloraUtilsConfig.cmake ${PROJECT_BINARY_DIR}/VeloraUtilsConfigVersion.cmake
  DESTINATION ${VELORA_CMAKE_DIR})

configure_file(${PROJECT_SOURCE_DIR}/cmake/VeloraUtils.pc.in ${PROJECT_BINARY_DIR}/VeloraUtils.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/VeloraUtils.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
