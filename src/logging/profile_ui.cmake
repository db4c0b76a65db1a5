kalmira_library(kalmira_profile_ui
  SOURCES curve_view.cpp
  LINKS kalmira_profile kalmira_screen_ui)
