kalmira_bench(framing_bench
  SOURCES framing_bench.cpp
  LINKS kalmira_instruments)
