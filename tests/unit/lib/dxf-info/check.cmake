cmake_minimum_required(VERSION 3.22)
# Runs dxf-info on INPUT and compares its standard output, byte for byte, with EXPECTED (where
# <INPUT> stands for the input's path) and its exit status with RC.
execute_process(COMMAND ${TOOL} ${INPUT} OUTPUT_VARIABLE out RESULT_VARIABLE rc)
file(READ ${EXPECTED} expected)
string(REPLACE "<INPUT>" "${INPUT}" expected "${expected}")
if(NOT out STREQUAL expected)
  message(FATAL_ERROR "dxf-info ${INPUT} printed:\n${out}\nexpected:\n${expected}")
endif()
if(NOT rc EQUAL RC)
  message(FATAL_ERROR "dxf-info ${INPUT} exited with ${rc}, expected ${RC}")
endif()
