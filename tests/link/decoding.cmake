kalmira_test(link_decoding_test
  SOURCES framing_test.cpp decode_test.cpp decode_tesk2_test.cpp ice_model_test.cpp record_rates_test.cpp
  LINKS kalmira_decode)
