kalmira_library(kalmira_nmea
  SOURCES nmea.cpp
  LINKS kalmira_platform)
