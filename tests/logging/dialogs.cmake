kalmira_widget_test(
    message_dialog_test SOURCES create_file_dialog_test.cpp message_dialog_test.cpp
    LINKS kalmira_logging_dialogs_ui)
