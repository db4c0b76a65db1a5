kalmira_library(kalmira_decode
  SOURCES
    framing.cpp
    decode_ascii.cpp
    decode_tesk2.cpp
    profile_map.cpp
    ice_model.cpp
    ice_tables.cpp
    record_rates.cpp
  LINKS kalmira_catalogue kalmira_platform)
