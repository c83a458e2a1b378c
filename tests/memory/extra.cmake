# Linked with the objects of the library, so that each small object is an allocation of its own, which can fail.
find_package(ZLIB REQUIRED)
set(pool ${PROJECT_SOURCE_DIR}/lumcommon/core/detail/SlabPool.cpp)
set_source_files_properties(${pool} PROPERTIES COMPILE_DEFINITIONS LUM_PLAIN_ALLOCATION SKIP_PRECOMPILE_HEADERS ON)
target_sources(${target} PRIVATE support/FailingMemory.cpp ${pool}
                                 $<FILTER:$<TARGET_OBJECTS:lumcommon>,EXCLUDE,/SlabPool.cpp>)
set_source_files_properties(support/FailingMemory.cpp PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
set_target_properties(${target} PROPERTIES LINK_LIBRARIES "GTest::gtest_main;ICU::i18n;ICU::uc;ZLIB::ZLIB;PkgConfig::UUID;Threads::Threads;${CMAKE_DL_LIBS}")
