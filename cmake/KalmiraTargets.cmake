# One place for the flags and the shape of every target.

add_library(kalmira_flags INTERFACE)
target_compile_options(kalmira_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor)
if(KALMIRA_FROM_NOTHING)
  # Sources are compiled several at once, each but the first of them as if it were a header.
  set(CMAKE_UNITY_BUILD ON)
  set(CMAKE_UNITY_BUILD_BATCH_SIZE 6)
  target_compile_options(kalmira_flags INTERFACE -Wno-subobject-linkage)
endif()
if(KALMIRA_SANITIZE)
  target_compile_options(kalmira_flags INTERFACE
    -fsanitize=${KALMIRA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kalmira_flags INTERFACE -fsanitize=${KALMIRA_SANITIZE})
endif()
if(KALMIRA_FUZZ)
  target_compile_options(kalmira_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
  target_link_options(kalmira_flags INTERFACE -fsanitize=address,undefined)
endif()

# kalmira_library(name SOURCES a.cpp ... LINKS other libraries)
# A static library of one floor of the house. It sees only what LINKS names.
function(kalmira_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE kalmira_flags)
  if(name MATCHES "_ui_")
    kalmira_precompiled(${name})
  endif()
endfunction()

# Every window reads the same half million lines of Qt: once for all of them, where that is wanted.
function(kalmira_precompiled name)
  if(NOT KALMIRA_FROM_NOTHING)
    return()
  endif()
  if(NOT TARGET kalmira_qt_headers)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/qt_headers.cpp CONTENT "")
    add_library(kalmira_qt_headers STATIC ${CMAKE_BINARY_DIR}/qt_headers.cpp)
    target_link_libraries(kalmira_qt_headers PRIVATE Qt6::Widgets kalmira_flags)
    target_precompile_headers(kalmira_qt_headers PRIVATE <QtWidgets>)
  endif()
  target_precompile_headers(${name} REUSE_FROM kalmira_qt_headers)
endfunction()

# kalmira_program(name SOURCES main.cpp LINKS ...)
function(kalmira_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} kalmira_flags)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()

# kalmira_test(name SOURCES ... LINKS ... [THREADED])
# THREADED tests run again under the thread sanitizer; the target threaded_tests builds them all.
add_custom_target(threaded_tests)
function(kalmira_test name)
  cmake_parse_arguments(ARG "THREADED" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gmock_main GTest::gtest kalmira_flags)
  # One label a test: the discovery of tests flattens lists.
  set(label unit)
  if(ARG_THREADED)
    set(label threaded)
    add_dependencies(threaded_tests ${name})
  endif()
  gtest_discover_tests(${name} PROPERTIES LABELS ${label} TIMEOUT 120 DISCOVERY_TIMEOUT 60)
endfunction()

# kalmira_widget_test(name SOURCES ... LINKS ... [THREADED])
# A test of windows: runs without a screen, on Qt's offscreen platform, in one QApplication. THREADED ones run under
# the thread sanitizer where script/test --windows asks for it; the target threaded_windows builds them all. A build
# for another machine leaves them out: in an emulator they are too slow for their own waits.
add_custom_target(threaded_windows)
function(kalmira_widget_test name)
  cmake_parse_arguments(ARG "THREADED" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${CMAKE_SOURCE_DIR}/tests/support/widget_main.cpp)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE
    ${ARG_LINKS} kalmira_resources GTest::gmock GTest::gtest Qt6::Widgets Qt6::Test kalmira_flags)
  kalmira_precompiled(${name})
  if(CMAKE_CROSSCOMPILING)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  set(label unit)
  if(ARG_THREADED)
    set(label windows)
    add_dependencies(threaded_windows ${name})
  endif()
  gtest_discover_tests(${name} PROPERTIES LABELS ${label} TIMEOUT 120 DISCOVERY_TIMEOUT 60)
endfunction()

find_program(KALMIRA_XVFB Xvfb)
find_program(KALMIRA_OPENBOX openbox)

# kalmira_test_on_x(name target 480x640 96 VARIABLE=VALUE ...)
# Runs the test program on an X server of its own with a window manager, where they are installed.
function(kalmira_test_on_x name target size dots)
  if(NOT KALMIRA_XVFB OR NOT KALMIRA_OPENBOX OR CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(test ${name}_on_${size}_${dots}_dpi)
  add_test(NAME ${test}
    COMMAND ${CMAKE_COMMAND} -E env ${ARGN} ${CMAKE_SOURCE_DIR}/script/in-x ${size} ${dots} $<TARGET_FILE:${target}>)
  set_tests_properties(${test} PROPERTIES LABELS windows TIMEOUT 240)
endfunction()
