kalmira_test(profile_test
  SOURCES profile_test.cpp profile_redraw_test.cpp
  LINKS kalmira_profile kalmira_logging kalmira_sim_core)
kalmira_widget_test(curve_view_test
  SOURCES curve_view_test.cpp
  LINKS kalmira_profile_ui kalmira_logging kalmira_sim_core)
