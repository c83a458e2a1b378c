# zlib makes the compressed data.
target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
