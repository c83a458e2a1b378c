# Writes lumcommon.pc when the library is installed, as only then is the prefix certain: `cmake --install --prefix` may
# name another one than the configuration did. Folders in the prefix are named from the place of the file itself, so that
# the installed tree can be moved; others as they were given.
cmake_path(ABSOLUTE_PATH LUM_LIBDIR BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
cmake_path(ABSOLUTE_PATH LUM_INCLUDEDIR BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
set(folder "${LUM_LIBDIR}/pkgconfig")
set(LUM_PREFIX "${CMAKE_INSTALL_PREFIX}")
foreach(name LUM_LIBDIR LUM_INCLUDEDIR)
  cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX "${${name}}" NORMALIZE isInside)
  if(isInside)
    cmake_path(RELATIVE_PATH ${name} BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
    string(PREPEND ${name} "\${prefix}/")
  endif()
endforeach()
cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX "${folder}" NORMALIZE isInside)
if(isInside)
  cmake_path(RELATIVE_PATH LUM_PREFIX BASE_DIRECTORY "${folder}")
  string(PREPEND LUM_PREFIX "\${pcfiledir}/")
  string(REGEX REPLACE "/$" "" LUM_PREFIX "${LUM_PREFIX}")
endif()
foreach(name LUM_PREFIX LUM_LIBDIR LUM_INCLUDEDIR)
  string(REPLACE " " "\\ " ${name} "${${name}}")  # as pkg-config does it itself for the place of the file
endforeach()
configure_file("${CMAKE_CURRENT_LIST_DIR}/lumcommon.pc.in" "${LUM_PC_FILE}" @ONLY)
