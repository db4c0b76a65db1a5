kalmira_fuzz(fuzz_datafile
  SOURCES fuzz_datafile.cpp
  LINKS kalmira_exporter)
