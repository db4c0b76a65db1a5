kalmira_fuzz(fuzz_framing
  SOURCES fuzz_framing.cpp
  LINKS kalmira_instruments)
