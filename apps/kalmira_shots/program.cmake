kalmira_program(kalmira-shots
  SOURCES kalmira_shots/main.cpp
  LINKS kalmira_shots)
