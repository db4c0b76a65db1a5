# The monitor as far as it needs no screen, then its window.
kalmira_library(kalmira_gps_monitor
  SOURCES monitor.cpp monitor_reader.cpp
  LINKS kalmira_link kalmira_nmea kalmira_platform)
kalmira_library(kalmira_gps_ui
  SOURCES message_entry_dialog.cpp monitor_window.cpp sentence_list_view.cpp
  LINKS
    kalmira_gps_monitor kalmira_logging_dialogs_ui kalmira_screen_ui kalmira_link kalmira_platform
    kalmira_settings kalmira_platform)
