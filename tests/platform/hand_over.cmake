kalmira_test(hand_over_test SOURCES hand_over_test.cpp LINKS kalmira_hand_over THREADED)
kalmira_test(power_test SOURCES power_test.cpp LINKS kalmira_power)
