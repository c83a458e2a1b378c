# Debian packages from what is installed: `cpack -G DEB` in the build folder makes the library, what is needed to compile
# with it, and the tool. `cmake --workflow --preset package` does it from the start.
set(CPACK_PACKAGE_NAME lumcommon)
set(CPACK_PACKAGE_VENDOR "LumCommon authors")
set(CPACK_PACKAGE_CONTACT "LumCommon maintainers <maintainers@lumcommon.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development)
if(TARGET lum)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})

# lum_package(COMPONENT NAME SECTION SUMMARY TEXT): the text follows that of all packages.
macro(lum_package component name section summary text)
  string(TOUPPER ${component} LUM_UPPER)
  set(CPACK_DEBIAN_${LUM_UPPER}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${LUM_UPPER}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${LUM_UPPER}_DESCRIPTION "${summary}\n${LUM_SHARED_TEXT}\n${text}")
endmacro()

set(LUM_SHARED_TEXT "LumCommon reads, holds and writes XML, and understands the values of
XSL-FO properties, exactly, fast on large documents, and safely on
hostile ones. It also reads archives and office documents.
.")
lum_package(library liblumcommon${PROJECT_VERSION_MAJOR} libs "XML and XSL-FO values for C++20 (shared library)"
"This package has what programs need to run.")
lum_package(development liblumcommon-dev libdevel "XML and XSL-FO values for C++20 (development files)"
"This package has what is needed to compile programs: headers, files for
CMake and pkg-config, the guides and examples.")
lum_package(tools lumcommon-tools text "XML and XSL-FO values for C++20 (command line tool)"
"This package has the tool lum, which shows the library at work and writes
JSON where there is structure.")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own

# What other packages depend on when they link the library, and what tells the loader of it.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/debian/triggers)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
# What lumcommon.pc requires, or a static library leaves to its users.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libicu-dev, zlib1g-dev, uuid-dev")

set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debianLayout.cmake)
set(CPACK_LUM_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
include(CPack)
cpack_add_component(library)
cpack_add_component(development DEPENDS library)
if(TARGET lum)
  cpack_add_component(tools DEPENDS library)
endif()
