# Compressed inputs are made by zlib itself.
target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
# A second and a third opinion on documents.
target_link_libraries(${target} PRIVATE PkgConfig::EXPAT PkgConfig::XMLJUDGE)
