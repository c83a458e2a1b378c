# What is installed, in components that become packages: the library; the public headers with the tables that they
# include, a CMake package, a pkg-config file, the guides and the examples that these show; the tool with its pages.
include(CMakePackageConfigHelpers)

get_target_property(type lumcommon TYPE)
set(LUM_IS_STATIC OFF)
set(LUM_REQUIRES icu-uc)  # the headers use it
set(LUM_REQUIRES_PRIVATE "icu-i18n zlib uuid")
if(type STREQUAL "STATIC_LIBRARY")
  set(LUM_IS_STATIC ON)
  string(APPEND LUM_REQUIRES " ${LUM_REQUIRES_PRIVATE}")
  set(LUM_REQUIRES_PRIVATE "")
endif()

install(TARGETS lumcommon EXPORT LumCommonTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

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

set(LUM_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/LumCommon)
install(EXPORT LumCommonTargets NAMESPACE LumCommon:: DESTINATION ${LUM_PACKAGE_DIR} COMPONENT development)
configure_package_config_file(cmake/LumCommonConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfig.cmake
                              INSTALL_DESTINATION ${LUM_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/LumCommonConfigVersion.cmake
        DESTINATION ${LUM_PACKAGE_DIR} COMPONENT development)

set(LUM_PC_FILE ${CMAKE_CURRENT_BINARY_DIR}/lumcommon.pc)
set(code "")
foreach(name PROJECT_VERSION PROJECT_DESCRIPTION LUM_REQUIRES LUM_REQUIRES_PRIVATE LUM_PC_FILE)
  string(APPEND code "set(${name} \"${${name}}\")\n")
endforeach()
install(CODE "${code}
  set(LUM_LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
  set(LUM_INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
  include(\"${CMAKE_CURRENT_SOURCE_DIR}/cmake/writePkgConfig.cmake\")
" COMPONENT development)
install(FILES ${LUM_PC_FILE} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# In the folders that their links name.
install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT development)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
        FILES_MATCHING PATTERN *.md PATTERN *.svg PATTERN *.cpp PATTERN expected EXCLUDE)

# gdb looks for the printers below its auto-load folder by the whole path of the library. A link has that name: a search
# for files that begin with the name of the library finds the library alone.
if(BUILD_SHARED_LIBS)
  install(CODE "
    set(folder \"${CMAKE_INSTALL_LIBDIR}\")
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
    file(INSTALL \"${PROJECT_SOURCE_DIR}/tools/gdb/lumcommon-gdb.py\"
         DESTINATION \"\${CMAKE_INSTALL_PREFIX}/share/gdb/auto-load\${folder}\")
    file(CREATE_LINK lumcommon-gdb.py
         \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share/gdb/auto-load\${folder}/$<TARGET_FILE_NAME:lumcommon>-gdb.py\" SYMBOLIC)
  " COMPONENT development)
endif()
