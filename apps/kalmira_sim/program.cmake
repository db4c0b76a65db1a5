kalmira_program(kalmira-sim
  SOURCES kalmira_sim/main.cpp
  LINKS kalmira_sim_core)
