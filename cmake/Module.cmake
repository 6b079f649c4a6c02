# zento_module(<name> [PUBLIC deps...] [PRIVATE deps...])
#
# A static library of every source and header in the calling folder, headers beside sources. Modules
# are added bottom to top in Sources/CMakeLists.txt, and a module may only depend on targets that
# exist already: that list is the diagram, and an edge that points upwards does not configure.
function(zento_module name)
    cmake_parse_arguments(M "" "" "PUBLIC;PRIVATE" ${ARGN})
    foreach(dependency IN LISTS M_PUBLIC M_PRIVATE)
        if(NOT TARGET ${dependency})
            message(FATAL_ERROR "${name} depends on ${dependency}, which is not a module below it")
        endif()
    endforeach()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(${name} STATIC ${sources})
    target_sources(${name} PUBLIC
        FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/Sources FILES ${headers})
    target_link_libraries(${name} PUBLIC ${M_PUBLIC} PRIVATE ${M_PRIVATE} project_options)
endfunction()

# zento_embed(<module> <function> <file>): makes a file part of the program. The module declares
# `std::span<const char> function();` in the namespace zento to get at its bytes.
function(zento_embed module function file)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${function}.cpp)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/Embedded.cpp.in ${source} @ONLY)
    set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS ${file})
    target_sources(${module} PRIVATE ${source})
endfunction()

# Faults of libraries we cannot mend, which the sanitizer of this build is to pass over. One variable:
# the discovery of tests does not hand on a list.
set(ZENTO_SANITIZER_OPTIONS LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tools/leaks.supp)
if(SANITIZE MATCHES thread)
    set(ZENTO_SANITIZER_OPTIONS TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tools/tsan.supp)
endif()

# zento_tests(<name> deps...): one Google Test program of every source in the calling folder.
# Tests of one program may run side by side; give them a private folder where they write files.
function(zento_tests name)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    add_executable(${name} ${sources})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/Tests)
    target_link_libraries(${name} PRIVATE ${ARGN} project_options GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES
        LABELS ${name}
        TIMEOUT 300
        ENVIRONMENT ${ZENTO_SANITIZER_OPTIONS})
endfunction()

# zento_pkg(<target> <modules...>): a pkg-config dependency as the target PkgConfig::<target>.
# Its headers count as system headers, so that our warnings stay ours.
macro(zento_pkg target)
    pkg_check_modules(${target} REQUIRED IMPORTED_TARGET GLOBAL ${ARGN})
    get_target_property(_includes PkgConfig::${target} INTERFACE_INCLUDE_DIRECTORIES)
    if(_includes)
        set_target_properties(PkgConfig::${target} PROPERTIES
            INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${_includes}")
    endif()
endmacro()
