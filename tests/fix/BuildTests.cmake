# Tests of the FIX builder and its slot list, including a gathered send over loopback TCP.
list(APPEND VELORA_FIX_TEST_SOURCES fix/wsa_collection_test.cpp fix/fix_tag_collection_test.cpp
  fix/gathered_send_test.cpp)
