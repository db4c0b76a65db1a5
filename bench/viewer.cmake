kalmira_bench(viewer_bench
  SOURCES viewer_bench.cpp
  LINKS kalmira_viewer kalmira_records)
