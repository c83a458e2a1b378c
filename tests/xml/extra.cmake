# Compressed inputs are made by zlib itself.
target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
# A second opinion on well-formed documents; without it that one test is skipped.
pkg_check_modules(EXPAT IMPORTED_TARGET expat)
if(EXPAT_FOUND)
  target_link_libraries(${target} PRIVATE PkgConfig::EXPAT)
  target_compile_definitions(${target} PRIVATE LUM_TEST_EXPAT)
endif()
