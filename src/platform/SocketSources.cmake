# Stream sockets of the platform layer: one implementation per system, same file name.
if(WIN32)
  list(APPEND VELORA_PLATFORM_SOURCES platform/win32/Sockets.cpp)
else()
  list(APPEND VELORA_PLATFORM_SOURCES platform/posix/Sockets.cpp)
endif()
