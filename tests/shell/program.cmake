kalmira_widget_test(program_parts_test
  SOURCES program_options_test.cpp program_test.cpp remembered_test.cpp single_instance_test.cpp
  LINKS kalmira_shell_ui)
kalmira_widget_test(main_window_test
  SOURCES chooser_test.cpp main_menu_test.cpp main_window_test.cpp title_test.cpp
  LINKS kalmira_shell_ui)
kalmira_widget_test(setup_actions_test
  SOURCES devices_dialog_test.cpp setup_actions_test.cpp
  LINKS kalmira_shell_ui THREADED)
