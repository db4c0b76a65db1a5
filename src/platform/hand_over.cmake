kalmira_library(kalmira_hand_over SOURCES hand_over.cpp LINKS Threads::Threads)

#The machine itself : its battery, and keeping it from going to sleep.
    kalmira_library(kalmira_power SOURCES battery.cpp idle.cpp LINKS kalmira_platform ${CMAKE_DL_LIBS})
