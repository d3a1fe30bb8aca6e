# FIX parsing and integrity tests.
list(APPEND VELORA_FIX_TEST_SOURCES fix/fix_integrity_test.cpp fix/fix_parser_test.cpp
  fix/fix_message_text_test.cpp)
