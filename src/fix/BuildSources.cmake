# FIX message building: the scatter-gather slot list and the FIX builder on top of it.
list(APPEND VELORA_FIX_SOURCES fix/WsaCollection.cpp fix/FixTagCollection.cpp)
# The builder's members call each other on every field; without interposition of the library's own
# exported symbols the compiler may inline those calls (GCC and clang; MinGW has no interposition).
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT WIN32)
  set_source_files_properties(fix/WsaCollection.cpp fix/FixTagCollection.cpp
    PROPERTIES COMPILE_OPTIONS -fno-semantic-interposition)
endif()
