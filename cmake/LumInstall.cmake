# What a user of the library gets: the shared library, the public headers with the tables that they include, a CMake
# package and a pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS lumcommon EXPORT LumCommonTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
                                                  NAMELINK_COMPONENT development)

lum_public_headers(headers)
foreach(header ${headers})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT development)
  file(STRINGS ${header} tables REGEX "^ *#include <lumcommon/.*\\.inc>")
  foreach(table ${tables})
    string(REGEX REPLACE ".*<(.*)>.*" "\\1" table ${table})
    get_filename_component(folder ${table} DIRECTORY)
    install(FILES ${table} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT development)
  endforeach()
endforeach()

install(EXPORT LumCommonTargets NAMESPACE LumCommon:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/LumCommon
        COMPONENT development)
configure_package_config_file(cmake/LumCommonConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/LumCommon)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/LumCommon COMPONENT development)

# The file bears the folders as they were given. It is written at install time, as `cmake --install --prefix` may name
# another prefix than the configuration did.
install(CODE "
  set(PROJECT_VERSION \"${PROJECT_VERSION}\")
  set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
  set(LUM_LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
  set(LUM_INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
  configure_file(\"${CMAKE_CURRENT_SOURCE_DIR}/cmake/lumcommon.pc.in\"
                 \"${CMAKE_CURRENT_BINARY_DIR}/lumcommon.pc\" @ONLY)
" COMPONENT development)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lumcommon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
