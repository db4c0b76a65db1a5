kalmira_library(kalmira_ports
  SOURCES com_devices.cpp device_claim.cpp device_texts.cpp keep_awake.cpp port.cpp port_thread.cpp readers.cpp serial_session_ports.cpp
  LINKS kalmira_decode kalmira_nmea kalmira_settings kalmira_catalogue kalmira_platform kalmira_platform)

# The one library that knows Qt's serial ports.
kalmira_library(kalmira_serial
  SOURCES qt_serial_port.cpp serial_devices.cpp
  LINKS kalmira_ports Qt6::Core Qt6::SerialPort)
