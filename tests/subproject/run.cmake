# Configures a project that has Quoin as one of its folders in WORK, compiles its two files and
# looks at what else would be built, and where: linking it would take building all of Quoin again.
# GENERATOR (Ninja), CXX, FLAGS and BUILD_TYPE are those of the build tree.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/RunStep.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK} -G ${GENERATOR}
  -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_BUILD_TYPE=${BUILD_TYPE})
get_filename_component(CONSUMER ${CMAKE_CURRENT_LIST_DIR}/../consumer ABSOLUTE)
# A caret asks Ninja for what is made of the file.
run(${CMAKE_COMMAND} --build ${WORK} --target ${CONSUMER}/TeeCount.cpp^ ${CONSUMER}/main.cpp^)

run(${CMAKE_COMMAND} --build ${WORK} -- -t targets all)
foreach(NAME consumer libteecount.so quoin/bin/quoin quoin/lib/libquoin.so quoin/lib/libquoinhost.so
    quoin/lib/libquoinplan.so quoin/lib/libquoincommands.so)
  if(NOT OUTPUT MATCHES "(^|\n)${NAME}: ")
    message(FATAL_ERROR "nothing builds ${NAME}:\n${OUTPUT}")
  endif()
endforeach()
# Tests and benchmarks belong to the outermost project alone.
foreach(NAME test_ quoin_bench quoin.1)
  if(OUTPUT MATCHES "(^|\n)[^\n:]*/${NAME}[^\n]*: ")
    message(FATAL_ERROR "as a folder of another project Quoin builds ${CMAKE_MATCH_0}")
  endif()
endforeach()
