kalmira_widget_test(
    session_dialogs_test SOURCES profile_scale_test.cpp session_dialogs_test.cpp
    LINKS kalmira_settings_ui kalmira_records)
