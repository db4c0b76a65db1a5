kalmira_widget_test(
    touch_button_test SOURCES touch_button_test.cpp LINKS kalmira_screen_ui)
