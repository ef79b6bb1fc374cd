# Runs SUBJECT in GDB with the pretty printers of SCRIPT and looks at what they show.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/RunStep.cmake)

set(SHOWN)
foreach(NAME id none record point vector)
  list(APPEND SHOWN -ex "print ${NAME}")
endforeach()
run(${GDB} -nx -batch -x ${SCRIPT} -ex "set debuginfod enabled off" -ex "break show" -ex run
  ${SHOWN} ${SUBJECT})
foreach(LINE "= .*id of [0-9A-F]+, LINE, [0-9]+ bytes, .*new" "= .*null id"
    "= .*record [0-9A-F]+, LINE, [0-9]+ bytes" "= .*[(]1, 2.5, -3[)]" "= .*[(]0, 1, 0[)]")
  if(NOT OUTPUT MATCHES "${LINE}")
    message(FATAL_ERROR "gdb does not show '${LINE}':\n${OUTPUT}")
  endif()
endforeach()
