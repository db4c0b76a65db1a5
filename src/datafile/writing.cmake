kalmira_library(kalmira_datafile
  SOURCES creation.cpp data_file.cpp disk.cpp record_writers.cpp sync_thread.cpp
  LINKS kalmira_records kalmira_settings kalmira_platform Threads::Threads)
