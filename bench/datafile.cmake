kalmira_bench(record_write_bench
  SOURCES record_write_bench.cpp
  LINKS kalmira_datafile)
