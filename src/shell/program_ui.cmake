# The program's windows: title, main menu, chooser, and what holds them together.
kalmira_library(kalmira_shell_ui
  SOURCES
    chooser_dialog.cpp devices_dialog.cpp main_menu.cpp main_window.cpp menu_layout.cpp program.cpp program_options.cpp remembered.cpp
    setup_actions_window.cpp single_instance.cpp terminate_signals.cpp title_view.cpp view_actions_window.cpp
  LINKS
    kalmira_logging_ui kalmira_viewer_ui kalmira_ui_gps kalmira_setup_ui kalmira_survey_setup_ui kalmira_screen_ui kalmira_logging kalmira_link Qt6::Widgets Qt6::Svg Qt6::Network)
target_compile_definitions(kalmira_shell_ui PRIVATE KALMIRA_VERSION="${PROJECT_VERSION}")
