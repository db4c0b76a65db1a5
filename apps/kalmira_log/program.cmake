kalmira_program(kalmira-log
  SOURCES kalmira_log/main.cpp
  LINKS kalmira_console kalmira_serial Qt6::Core)
