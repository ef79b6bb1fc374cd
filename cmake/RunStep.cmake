# run(COMMAND...): runs it, stops the script with all it printed when it fails, and leaves what
# it printed in OUTPUT.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE STATUS OUTPUT_VARIABLE OUTPUT
    ERROR_VARIABLE OUTPUT)
  if(NOT STATUS EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${STATUS}:\n${OUTPUT}")
  endif()
  set(OUTPUT "${OUTPUT}" PARENT_SCOPE)
endfunction()
