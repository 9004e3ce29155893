# The one shared library. Sources are picked up per subsystem folder so that adding a file needs no
# edit here.
include(${CMAKE_CURRENT_LIST_DIR}/VantraCoreSanitizers.cmake)
find_package(utf8cpp CONFIG REQUIRED)
find_package(nlohmann_json 3 REQUIRED)
# The quick JSON parse; private to the library, so that neither its headers nor the package need it.
find_package(simdjson CONFIG REQUIRED)
# The shortest digits of a double; header-only, so the library needs no more at run time than before.
find_package(fmt CONFIG REQUIRED)

file(GLOB_RECURSE VANTRACORE_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.cpp)
file(GLOB_RECURSE VANTRACORE_PUBLIC_HEADERS CONFIGURE_DEPENDS
     ${PROJECT_SOURCE_DIR}/include/VantraCore/*.h)

# The version header is made from the one project version, into the build tree's include directory,
# which every target that sees the public headers sees too.
set(VANTRACORE_GENERATED_INCLUDE_DIR ${PROJECT_BINARY_DIR}/include)
configure_file(${PROJECT_SOURCE_DIR}/cmake/Version.h.in ${VANTRACORE_GENERATED_INCLUDE_DIR}/VantraCore/Version.h @ONLY)
list(APPEND VANTRACORE_PUBLIC_HEADERS ${VANTRACORE_GENERATED_INCLUDE_DIR}/VantraCore/Version.h)

find_package(Threads REQUIRED)

# Compiled once, linked twice: into the shared library, and into a static archive through which
# white-box tests and benchmarks reach the hidden internals.
add_library(VantraCoreObjects OBJECT ${VANTRACORE_SOURCES} ${VANTRACORE_PUBLIC_HEADERS})
set_target_properties(VantraCoreObjects PROPERTIES
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON
  POSITION_INDEPENDENT_CODE ON)
target_include_directories(VantraCoreObjects
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${VANTRACORE_GENERATED_INCLUDE_DIR}>
  PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_compile_features(VantraCoreObjects PUBLIC cxx_std_17)
target_link_libraries(VantraCoreObjects PUBLIC Threads::Threads
  PRIVATE VantraCoreWarnings utf8cpp nlohmann_json::nlohmann_json simdjson::simdjson fmt::fmt-header-only)

add_library(VantraCore SHARED $<TARGET_OBJECTS:VantraCoreObjects>)
add_library(VantraCore::VantraCore ALIAS VantraCore)
set_target_properties(VantraCore PROPERTIES OUTPUT_NAME VantraCore-0)
# The module is known by one name, libVantraCore-0.so, which is also its SONAME.
target_link_options(VantraCore PRIVATE "LINKER:-soname,libVantraCore-0.so" "LINKER:--no-undefined")
target_include_directories(VantraCore
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<BUILD_INTERFACE:${VANTRACORE_GENERATED_INCLUDE_DIR}>
         $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(VantraCore PUBLIC cxx_std_17)
target_link_libraries(VantraCore PUBLIC Threads::Threads PRIVATE simdjson::simdjson)

add_library(VantraCoreInternal STATIC $<TARGET_OBJECTS:VantraCoreObjects>)
target_include_directories(VantraCoreInternal
  PUBLIC ${PROJECT_SOURCE_DIR}/include ${VANTRACORE_GENERATED_INCLUDE_DIR} ${PROJECT_SOURCE_DIR}/src)
target_compile_features(VantraCoreInternal PUBLIC cxx_std_17)
target_link_libraries(VantraCoreInternal PUBLIC Threads::Threads utf8cpp nlohmann_json::nlohmann_json
  simdjson::simdjson fmt::fmt-header-only)

# Hidden visibility keeps our internals private; the version script also keeps the standard
# library's template instances (which default to visible) out of the dynamic symbol table.
set(VANTRACORE_VERSION_SCRIPT ${PROJECT_SOURCE_DIR}/cmake/VantraCore.map)
target_link_options(VantraCore PRIVATE "LINKER:--version-script=${VANTRACORE_VERSION_SCRIPT}")
set_property(TARGET VantraCore APPEND PROPERTY LINK_DEPENDS ${VANTRACORE_VERSION_SCRIPT})
