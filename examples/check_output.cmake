# Runs an example and compares what comes out. Called by the tests of this folder with
#   PROGRAM, ARGUMENTS   what to run; ARGUMENTS have spaces between them
#   INPUT                a file for standard input
#   STATUS               the exit status
#   OUTPUT               the lines of standard output, with spaces between them
#   ERRORS               a regular expression for all of standard error
cmake_policy(VERSION 3.25)

separate_arguments(arguments UNIX_COMMAND "${ARGUMENTS}")
execute_process(COMMAND ${PROGRAM} ${arguments} INPUT_FILE ${INPUT}
                RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
if(NOT output STREQUAL "" AND NOT output MATCHES "\n$")
    message(SEND_ERROR "the last line has no end")
endif()
string(REPLACE "\n" " " output "${output}")
string(STRIP "${output}" output)
if(NOT status STREQUAL STATUS)
    message(SEND_ERROR "exit status: ${status}, not ${STATUS}")
endif()
if(NOT output STREQUAL OUTPUT)
    message(SEND_ERROR "standard output: ${output}\nshould be: ${OUTPUT}")
endif()
if(NOT errors MATCHES "^${ERRORS}\n?$")
    message(SEND_ERROR "standard error: ${errors}\nshould match: ${ERRORS}")
endif()
