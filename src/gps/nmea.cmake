kalmira_library(kalmira_nmea
  SOURCES nmea.cpp
  LINKS kalmira_platform)
kalmira_library(kalmira_find_receiver
  SOURCES find_receiver.cpp
  LINKS kalmira_link kalmira_nmea kalmira_settings kalmira_platform)
