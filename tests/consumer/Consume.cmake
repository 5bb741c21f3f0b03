# Builds and runs a stranger's program against the library in one of two ways, in the folder WORK:
# KIND=shared installs the build tree BUILD; KIND=static builds the library as a part of the
# stranger's project and installs that. An installed tree is used by CMake and by pkg-config, after
# it was moved. RECORDING is what the program opens, SOURCE is the library's source folder.
cmake_minimum_required(VERSION 3.24)
set(consumer "${SOURCE}/tests/consumer")
set(prefix "${WORK}/moved")

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT code EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}: ${code}\n${out}${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(run_consumer program)
  run("${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${library_path}" "${program}" "${RECORDING}")
  if(NOT out STREQUAL "22 channels, 22 rows\n")
    message(FATAL_ERROR "${program} says ${out}")
  endif()
endfunction()

function(configure source build)
  run("${CMAKE_COMMAND}" -S "${source}" -B "${build}" -G "${GENERATOR}"
      "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" ${ARGN})
  run("${CMAKE_COMMAND}" --build "${build}" --parallel)
endfunction()

if(KIND STREQUAL "static")
  set(BUILD "${WORK}/subproject")
  configure("${consumer}/subproject" "${BUILD}" 
            "-DFETCHCONTENT_SOURCE_DIR_KVSIG=${SOURCE}" -DKVSIG_INSTALL=ON)
  run_consumer("${BUILD}/consumer")
  if(EXISTS "${BUILD}/_deps/kvsig-build/tool")
    message(FATAL_ERROR "a sub-project builds more than the library")
  endif()
endif()

file(REMOVE_RECURSE "${WORK}/installed" "${prefix}" "${WORK}/find_package")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/installed")
file(RENAME "${WORK}/installed" "${prefix}")

configure("${consumer}" "${WORK}/find_package" "-DCMAKE_PREFIX_PATH=${prefix}")
run_consumer("${WORK}/find_package/consumer")

file(GLOB_RECURSE pc "${prefix}/kvsig.pc")
cmake_path(GET pc PARENT_PATH pc)
set(static "")
if(KIND STREQUAL "static")
  set(static --static)
endif()
run("${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${pc}" pkg-config ${static} --cflags --libs kvsig)
separate_arguments(flags UNIX_COMMAND "${out}")
# Its include folders are no system's: the headers have to be free of warnings.
run("${COMPILER}" -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Werror "${consumer}/consumer.cpp" -o "${WORK}/by_pkg_config" ${flags})
cmake_path(GET pc PARENT_PATH library_path)
run_consumer("${WORK}/by_pkg_config")
