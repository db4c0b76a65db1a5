# The session's buttons and keys as far as they need no screen, then its window.
kalmira_library(kalmira_session_keys
  SOURCES button_texts.cpp key_table.cpp
  LINKS kalmira_logging Qt6::Core)
kalmira_library(kalmira_logging_ui
  SOURCES button_row_view.cpp logging_window.cpp session_commands_window.cpp
  LINKS
    kalmira_session_keys kalmira_panel_ui kalmira_profile_ui kalmira_logging_dialogs_ui kalmira_settings_ui
    kalmira_logging kalmira_link kalmira_platform)
