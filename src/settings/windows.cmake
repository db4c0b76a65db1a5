target_sources(kalmira_settings PRIVATE comment_hint.cpp)
kalmira_library(kalmira_settings_ui
  SOURCES comment_dialog.cpp new_line_dialog.cpp new_station_dialog.cpp profile_scale_dialog.cpp
  LINKS kalmira_screen_ui kalmira_settings kalmira_platform)
# The main menu's set-up dialogs of the ports, and what they decide without a screen.
target_sources(kalmira_settings PRIVATE setup_lists.cpp)
kalmira_library(kalmira_setup_ui
  SOURCES gps_port_setup_dialog.cpp logger_setup_dialog.cpp setup_lists_dialog.cpp
  LINKS kalmira_screen_ui kalmira_settings kalmira_theme kalmira_gps)
