# The program's windows, and beside them the least that Qt needs to show one.
add_executable(window_run window_run.cpp window_child.cpp)
target_link_libraries(window_run PRIVATE kalmira_shell_ui kalmira_resources kalmira_flags)
add_executable(empty_window empty_window.cpp)
target_link_libraries(empty_window PRIVATE Qt6::Widgets kalmira_flags)
set_target_properties(window_run empty_window PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
add_dependencies(window_run empty_window kalmira-sim)
