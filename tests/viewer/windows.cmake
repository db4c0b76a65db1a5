kalmira_widget_test(viewer_windows_test
  SOURCES font_window_test.cpp view_files_window_test.cpp viewer_commands_test.cpp
  LINKS kalmira_viewer_ui kalmira_records)
target_compile_definitions(viewer_windows_test PRIVATE KALMIRA_SAMPLES="${CMAKE_SOURCE_DIR}/samples")
