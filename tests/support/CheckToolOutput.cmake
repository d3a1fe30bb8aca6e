# Runs velora-util (under the cross-compiling emulator when there is one) and compares its standard
# output with a reference file, ignoring carriage returns and the timing line. Arguments: TOOL, EMULATOR, ARGS (a ;-list),
# EXPECTED, EXIT_CODE.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${EMULATOR} ${TOOL} ${ARGS}
  OUTPUT_VARIABLE actual ERROR_VARIABLE errors RESULT_VARIABLE rc)
if(NOT rc EQUAL EXIT_CODE)
  message(FATAL_ERROR "velora-util ${ARGS} exited with ${rc}, expected ${EXIT_CODE}\n${errors}")
endif()
file(READ ${EXPECTED} expected)
string(REPLACE "\r" "" actual "${actual}")
# Timings differ from run to run: lines starting with "rate:" are left out of the comparison.
string(REGEX REPLACE "(^|\n)rate:[^\n]*" "" actual "${actual}")
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "velora-util ${ARGS} printed:\n${actual}\nexpected:\n${expected}")
endif()
