kalmira_test(data_file_test
  SOURCES data_file_test.cpp
  LINKS kalmira_datafile
  THREADED)
