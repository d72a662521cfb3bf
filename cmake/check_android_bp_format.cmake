# Fails when bpfmt would lay Android.bp out differently (bpfmt -d prints the
# difference and exits 0 all the same) or cannot parse it.
# Usage: cmake -DANDROID_BP=FILE -DBPFMT=PROGRAM -P check_android_bp_format.cmake
execute_process(COMMAND ${BPFMT} -d ${ANDROID_BP}
  RESULT_VARIABLE status OUTPUT_VARIABLE diff ERROR_VARIABLE diff)
if(NOT status EQUAL 0 OR NOT diff STREQUAL "")
  message(FATAL_ERROR "${ANDROID_BP} is not as bpfmt lays it out (${BPFMT}: ${status}); "
    "run bpfmt -w on it:\n${diff}")
endif()
