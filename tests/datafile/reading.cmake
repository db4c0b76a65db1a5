kalmira_test(record_format_test
  SOURCES record_format_test.cpp
  LINKS kalmira_records)
kalmira_test(datafile_reading_test
  SOURCES record_parse_test.cpp record_reader_test.cpp record_times_test.cpp
  LINKS kalmira_datafile_reading)
