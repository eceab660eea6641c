# Libraries of others; docs/dependencies.md says why each is there.

find_package(XercesC 3.2 REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(fmt REQUIRED)
find_package(Boost REQUIRED)

find_path(UTFCPP_INCLUDE_DIR utf8cpp/utf8.h REQUIRED)
add_library(orbseq_utfcpp INTERFACE)
target_include_directories(orbseq_utfcpp SYSTEM INTERFACE ${UTFCPP_INCLUDE_DIR}/utf8cpp)

find_path(CSV_INCLUDE_DIR csv.h REQUIRED)
find_library(CSV_LIBRARY csv REQUIRED)
add_library(orbseq_libcsv INTERFACE)
target_include_directories(orbseq_libcsv SYSTEM INTERFACE ${CSV_INCLUDE_DIR})
target_link_libraries(orbseq_libcsv INTERFACE ${CSV_LIBRARY})
find_package(ZLIB REQUIRED)
find_package(SQLite3 REQUIRED)

find_path(XXHASH_INCLUDE_DIR xxhash.h REQUIRED)
add_library(orbseq_xxhash INTERFACE)
target_include_directories(orbseq_xxhash SYSTEM INTERFACE ${XXHASH_INCLUDE_DIR})
if(ORBSEQ_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
