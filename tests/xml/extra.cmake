# Compressed inputs are made by zlib itself.
target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
# A second opinion on well-formed documents.
target_link_libraries(${target} PRIVATE PkgConfig::EXPAT)
