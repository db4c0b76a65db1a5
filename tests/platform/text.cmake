kalmira_test(platform_text_test SOURCES text_test.cpp LINKS kalmira_platform)
