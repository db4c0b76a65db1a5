kalmira_fuzz(fuzz_nmea
  SOURCES fuzz_nmea.cpp
  LINKS kalmira_gps)
