# zlib makes the compressed data and judges what was written.
target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
