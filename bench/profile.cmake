kalmira_bench(profile_bench
  SOURCES profile_bench.cpp
  LINKS kalmira_profile_ui kalmira_logging kalmira_sim_core)
