kalmira_program(kalmira
  SOURCES kalmira/main.cpp
  LINKS kalmira_shell_ui kalmira_resources Qt6::Widgets)
