kalmira_program(kalmira-log
  SOURCES kalmira_log/main.cpp
  LINKS kalmira_console kalmira_link Qt6::Core)
