target_sources(kalmira_settings PRIVATE comment_hint.cpp)
kalmira_library(kalmira_settings_ui
  SOURCES comment_dialog.cpp new_line_dialog.cpp new_station_dialog.cpp profile_scale_dialog.cpp
  LINKS kalmira_screen_ui kalmira_settings kalmira_platform)
