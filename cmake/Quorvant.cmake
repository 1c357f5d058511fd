# Settings and helpers that every folder of the project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The two programs stand directly in the build folder, where README and ./run name them.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})

find_program(QUORVANT_CCACHE ccache)
if(QUORVANT_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QUORVANT_CCACHE})
endif()

# Linking the test programs takes minutes with the default linker; mold links them in seconds.
find_program(QUORVANT_MOLD mold)
if(QUORVANT_MOLD)
    add_link_options(-fuse-ld=mold)
endif()

# The programs read files from anywhere: their tables of addresses can only be read once they have started.
set(QUORVANT_PROGRAM_LINK_OPTIONS "")
if(UNIX AND NOT APPLE)
    set(QUORVANT_PROGRAM_LINK_OPTIONS -Wl,-z,relro,-z,now)
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus Widgets)

add_library(quorvant_options INTERFACE)
target_compile_options(quorvant_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 warns of an overlap and of an overrun inside std::string's own operator+ that cannot happen
    # (GCC bugs 105651 and 105329).
    target_compile_options(quorvant_options INTERFACE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow)
endif()
target_include_directories(quorvant_options INTERFACE ${CMAKE_SOURCE_DIR})

set(QUORVANT_SANITIZE "" CACHE STRING "Value for -fsanitize=, for example address,undefined")
if(QUORVANT_SANITIZE)
    target_compile_options(quorvant_options INTERFACE
        -fsanitize=${QUORVANT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # The sanitizers' own code makes GCC warn of what is not there; the release build warns without them.
        target_compile_options(quorvant_options INTERFACE
            -Wno-maybe-uninitialized)
    endif()
    target_link_options(quorvant_options INTERFACE -fsanitize=${QUORVANT_SANITIZE})
endif()

# The headers that nearly every source reads are read once: the standard library's for the engine and the
# command, Qt's beside them for the editor.
add_library(engine_precompiled STATIC ${CMAKE_SOURCE_DIR}/cmake/precompiled.cpp)
target_link_libraries(engine_precompiled PRIVATE quorvant_options)
target_precompile_headers(engine_precompiled PRIVATE
    <algorithm> <array> <atomic> <chrono> <cmath> <condition_variable> <cstdint> <deque> <exception> <filesystem>
    <functional> <list> <map> <memory> <mutex> <new> <optional> <set> <span> <stdexcept> <string> <string_view>
    <system_error> <thread> <tuple> <unordered_map> <utility> <variant> <vector>)

add_library(desktop_precompiled STATIC ${CMAKE_SOURCE_DIR}/cmake/precompiled.cpp)
target_link_libraries(desktop_precompiled PRIVATE quorvant_options Qt6::Widgets)
target_compile_definitions(desktop_precompiled PRIVATE QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY)
target_precompile_headers(desktop_precompiled PRIVATE
    <algorithm> <array> <cmath> <cstdint> <exception> <filesystem> <functional> <map> <memory> <mutex> <optional>
    <span> <string> <string_view> <thread> <utility> <vector>
    <QApplication> <QComboBox> <QDialog> <QFileDialog> <QKeyEvent> <QLabel> <QLineEdit> <QListWidget> <QLocale>
    <QMainWindow> <QMessageBox> <QMouseEvent> <QPainter> <QPushButton> <QScrollBar> <QSettings> <QString> <QStringList>
    <QTimer> <QVariant> <QWidget>)

function(quorvant_static_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC quorvant_options ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()

# quorvant_library(NAME SOURCES file... [PUBLIC lib...] [PRIVATE lib...])
# One static library for a folder. PUBLIC: what its headers show; PRIVATE: what only its sources use.
function(quorvant_library name)
    quorvant_static_library(${name} ${ARGN})
    target_precompile_headers(${name} REUSE_FROM engine_precompiled)
endfunction()

# Tests are compiled for speed of compiling: what they spend their time in is the engine. Checking their own
# code for undefined behaviour, most of it the test framework's, would nearly double the time that it takes to
# compile. Without any optimisation what is gained there is lost again when they run.
set(QUORVANT_TEST_OPTIONS -O1)
# Tests that look at programs, windows and numbers from outside do little with memory of their own: they are compiled
# without the sanitizers, and what they drive is checked as everywhere.
set(QUORVANT_OUTSIDE_TEST_OPTIONS -O0)
if(QUORVANT_SANITIZE)
    list(APPEND QUORVANT_TEST_OPTIONS -fno-sanitize=undefined)
    list(APPEND QUORVANT_OUTSIDE_TEST_OPTIONS -fno-sanitize=all)
endif()

# What a source of a test costs the compiler is mostly what it includes, which several at once share. Who changes one of them over and over sets this to OFF.
option(QUORVANT_JOIN_TESTS "Compile several sources of a test program at once" ON)
function(quorvant_join_sources name)
    if(NOT QUORVANT_JOIN_TESTS)
        return()
    endif()
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # A source that is included counts as a header, whose types should not be local ones.
        target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
    endif()
endfunction()

# quorvant_test(NAME SOURCES file... LIBS lib... [LABELS label...] [TIMEOUT seconds])
# One GoogleTest program; CTest lists each of its tests by name.
function(quorvant_test name)
    cmake_parse_arguments(ARG "OUTSIDE" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
    if(QUORVANT_SANITIZE AND "release-only" IN_LIST ARG_LABELS)
        return()
    endif()
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_link_libraries(${name} PRIVATE quorvant_options test_support ${ARG_LIBS} GTest::gmock GTest::gtest_main)
    if(ARG_OUTSIDE)
        target_compile_options(${name} PRIVATE ${QUORVANT_OUTSIDE_TEST_OPTIONS})
    else()
        target_compile_options(${name} PRIVATE ${QUORVANT_TEST_OPTIONS})
        target_precompile_headers(${name} REUSE_FROM test_precompiled)
    endif()
    quorvant_join_sources(${name})
    target_compile_definitions(${name} PRIVATE
        TEST_DATA_DIR="${CMAKE_SOURCE_DIR}/tests/data" SOURCE_DIR="${CMAKE_SOURCE_DIR}" BUILD_DIR="${CMAKE_BINARY_DIR}")
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 900) # a test that hangs, also on a machine that is busy with other things
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()

# quorvant_desktop_library(NAME SOURCES file... [PUBLIC lib...] [PRIVATE lib...])
# The same for a folder that uses Qt Widgets. A form's .ui file stands beside its source.
function(quorvant_desktop_library name)
    quorvant_static_library(${name} ${ARGN})
    target_precompile_headers(${name} REUSE_FROM desktop_precompiled)
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
    target_link_libraries(${name} PUBLIC Qt6::Widgets)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY)
endfunction()

# What several programs over real widgets share is compiled as they are.
function(quorvant_compile_as_desktop_test name)
    target_compile_options(${name} PRIVATE ${QUORVANT_OUTSIDE_TEST_OPTIONS})
    target_precompile_headers(${name} REUSE_FROM test_desktop)
endfunction()

# quorvant_desktop_test(NAME SOURCES file... LIBS lib... [LABELS label...] [TIMEOUT seconds])
# A GoogleTest program over real widgets on Qt's offscreen platform.
function(quorvant_desktop_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_link_libraries(${name} PRIVATE quorvant_options test_support test_desktop ${ARG_LIBS})
    quorvant_compile_as_desktop_test(${name})
    quorvant_join_sources(${name})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 900) # a test that hangs, also on a machine that is busy with other things
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
