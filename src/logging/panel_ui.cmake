kalmira_library(kalmira_panel_ui
  SOURCES panel_view.cpp
  LINKS kalmira_panel kalmira_screen_ui)
