# The viewer's windows, and the font window.
kalmira_library(kalmira_viewer_ui
  SOURCES
    font_window.cpp line_list_view.cpp line_picture_view.cpp open_file_dialog.cpp opened_file.cpp overview_view.cpp
    readout_view.cpp view_curve_view.cpp view_files_window.cpp view_saving_window.cpp viewer_commands.cpp
    viewer_layout.cpp viewer_saving.cpp
  LINKS
    kalmira_viewer kalmira_session_keys kalmira_profile kalmira_exporter kalmira_logging_dialogs_ui kalmira_settings_ui kalmira_screen_ui
    Qt6::Svg)
