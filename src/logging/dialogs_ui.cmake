kalmira_library(kalmira_logging_dialogs_ui
  SOURCES create_file_dialog.cpp message_dialog.cpp
  LINKS kalmira_logging kalmira_screen_ui)
