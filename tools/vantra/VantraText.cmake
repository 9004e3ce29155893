# The tool's reading and writing of text (CSV, --at paths, times, units) without its commands, files
# or main, so that the fuzz targets can take it too, built against the library archive they test.
find_path(VANTRA_CSV_INCLUDE csv.h REQUIRED)
find_library(VANTRA_CSV_LIBRARY csv REQUIRED)
set(VANTRA_TEXT_DIR ${CMAKE_CURRENT_LIST_DIR})

# A static library `name` of those sources against `core`, the shared library or its static archive.
function(add_vantra_text_library name core)
  add_library(${name} STATIC
    ${VANTRA_TEXT_DIR}/CsvTable.cpp
    ${VANTRA_TEXT_DIR}/CsvText.cpp
    ${VANTRA_TEXT_DIR}/Errors.cpp
    ${VANTRA_TEXT_DIR}/PathText.cpp
    ${VANTRA_TEXT_DIR}/TimeText.cpp
    ${VANTRA_TEXT_DIR}/UnitSupport.cpp)
  target_include_directories(${name} PUBLIC ${VANTRA_TEXT_DIR})
  # CSV by libcsv (RFC 4180 quoting, line breaks inside quoted fields).
  target_include_directories(${name} SYSTEM PRIVATE ${VANTRA_CSV_INCLUDE})
  target_link_libraries(${name} PUBLIC ${core} PRIVATE VantraCoreWarnings ${VANTRA_CSV_LIBRARY})
endfunction()
