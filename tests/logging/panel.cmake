kalmira_widget_test(
    panel_test SOURCES panel_layout_test.cpp panel_view_test.cpp LINKS kalmira_panel_ui kalmira_logging)
