# Whole programs, measured from outside: no Google Benchmark here.
add_executable(peers peers.cpp peers_process.cpp peers_run.cpp peers_stream.cpp)
target_link_libraries(peers PRIVATE kalmira_datafile kalmira_sim_core kalmira_flags)
set_target_properties(peers PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
