kalmira_fuzz(fuzz_viewer
  SOURCES fuzz_viewer.cpp
  LINKS kalmira_viewer)
