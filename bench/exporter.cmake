kalmira_bench(export_bench
  SOURCES export_bench.cpp
  LINKS kalmira_exporter)
