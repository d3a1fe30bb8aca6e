# Installs the build into a scratch prefix and builds a small consumer against it twice: through
# find_package(VeloraUtils) and through pkg-config. Both programs must run and pass.
# Arguments: BUILD_DIR, WORK_DIR, CONSUMER_SOURCE, GENERATOR, CXX.
cmake_minimum_required(VERSION 3.25)
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "command failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  message(STATUS "${out}")
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${WORK_DIR}/cmake-build -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/velora_consumer)

find_program(PKG_CONFIG pkg-config REQUIRED)
file(GLOB_RECURSE pc_files ${prefix}/*/VeloraUtils.pc)
list(GET pc_files 0 pc_file)
get_filename_component(pc_dir ${pc_file} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs VeloraUtils OUTPUT_VARIABLE flags
  OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config does not know VeloraUtils")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} -std=c++20 ${CONSUMER_SOURCE}/main.cpp ${flags} -o ${WORK_DIR}/pkgconfig_consumer)
string(REGEX MATCH "-L[^ ;]+" libdir_flag "${flags}")
string(SUBSTRING "${libdir_flag}" 2 -1 libdir)
set(ENV{LD_LIBRARY_PATH} ${libdir})
run(${WORK_DIR}/pkgconfig_consumer)
