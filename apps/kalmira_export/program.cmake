kalmira_program(kalmira-export
  SOURCES kalmira_export/main.cpp
  LINKS kalmira_exporter)
