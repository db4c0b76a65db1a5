kalmira_fuzz(fuzz_settings
  SOURCES fuzz_settings.cpp
  LINKS kalmira_settings)
