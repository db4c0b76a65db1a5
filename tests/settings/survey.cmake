kalmira_test(survey_setup_test
  SOURCES display_options_test.cpp survey_setup_test.cpp
  LINKS kalmira_settings)
kalmira_widget_test(
    survey_dialogs_test SOURCES display_options_dialog_test.cpp survey_setup_dialog_test.cpp
    LINKS kalmira_survey_setup_ui)
