# velora_set_warnings(<target>): the warning set every target of ours compiles with, on g++,
# clang and MinGW alike. Third-party code (GoogleTest, Google Benchmark) is not affected.
function(velora_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
    -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Wnull-dereference
    -Woverloaded-virtual -Wimplicit-fallthrough)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports false -Wrestrict overlaps inside libstdc++'s std::string at -O3 (GCC bug 105329).
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(VELORA_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
