# Compiler settings and the libraries that every room shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)

find_program(CCACHE ccache)
if(CCACHE)
    # The precompiled header is included by time stamp, so ccache has to be told that this is fine.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-fpch-preprocess)
    endif()
endif()

# Touching one source of a lower room links a hundred programs again, which is most of that time.
find_program(MOLD mold)
if(MOLD AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    add_link_options(-fuse-ld=mold)
endif()

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets UiTools Network Svg LinguistTools)
if(WAYFOLD_TESTS)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
endif()
if(WAYFOLD_BROWSER)
    find_package(Qt6 6.4 REQUIRED COMPONENTS WebEngineWidgets)
endif()
find_package(PkgConfig REQUIRED)
pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(URIPARSER REQUIRED IMPORTED_TARGET liburiparser)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
pkg_check_modules(EBOOK REQUIRED IMPORTED_TARGET libebook-1.2 libebook-contacts-1.2)

add_compile_options(-Wall -Wextra -Werror)
add_compile_definitions(QT_NO_FOREACH QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)
if(WAYFOLD_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g1 -O1)
    add_link_options(-fsanitize=address,undefined)
endif()
if(WAYFOLD_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
                        -fno-omit-frame-pointer -g1 -O1)
    add_link_options(-fsanitize=address,undefined)
endif()

# What every room above `platform/base` includes anyway, compiled once and shared by all of them.
file(WRITE ${CMAKE_BINARY_DIR}/wayfold_pch.cpp.in "// The shared precompiled header belongs to this source.\n")
configure_file(${CMAKE_BINARY_DIR}/wayfold_pch.cpp.in ${CMAKE_BINARY_DIR}/wayfold_pch.cpp COPYONLY)
add_library(wayfold_pch STATIC ${CMAKE_BINARY_DIR}/wayfold_pch.cpp)
target_link_libraries(wayfold_pch PUBLIC Qt6::Widgets Qt6::UiTools Qt6::Svg)
target_precompile_headers(wayfold_pch PRIVATE <QtWidgets> <functional> <memory> <optional> <vector>)

# A room of the house: a static library of every source in its folder (or in the named sub-folders).
#   wayfold_room(NAME [FOLDERS a b] LINK lib...)
function(wayfold_room NAME)
    cmake_parse_arguments(ROOM "" "" "FOLDERS;LINK" ${ARGN})
    if(NOT ROOM_FOLDERS)
        set(ROOM_FOLDERS .)
    endif()
    set(sources)
    foreach(folder IN LISTS ROOM_FOLDERS)
        file(GLOB found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp
             ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h)
        list(APPEND sources ${found})
    endforeach()
    if(NOT sources)
        add_library(${NAME} INTERFACE)
        target_link_libraries(${NAME} INTERFACE ${ROOM_LINK})
        return()
    endif()
    add_library(${NAME} STATIC ${sources})
    target_include_directories(${NAME} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${NAME} PUBLIC ${ROOM_LINK})
    if(Qt6::UiTools IN_LIST ROOM_LINK OR NOT Qt6::Core IN_LIST ROOM_LINK)
        target_precompile_headers(${NAME} REUSE_FROM wayfold_pch)
    endif()
endfunction()
