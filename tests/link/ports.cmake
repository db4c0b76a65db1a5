kalmira_test(port_test SOURCES port_test.cpp LINKS kalmira_ports)
kalmira_test(readers_test SOURCES readers_test.cpp LINKS kalmira_ports)
kalmira_test(port_threads_test SOURCES port_threads_test.cpp LINKS kalmira_ports THREADED)
kalmira_test(qt_serial_port_test SOURCES qt_serial_port_test.cpp LINKS kalmira_serial THREADED)
