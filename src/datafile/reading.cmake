kalmira_library(kalmira_datafile_reading
  SOURCES line_block.cpp record_parse.cpp record_reader.cpp record_times.cpp
  LINKS kalmira_records kalmira_platform)
