# Installs the build tree BUILD into WORK/prefix, builds the consumer against it, runs it and
# checks what it prints. GENERATOR, CXX, FLAGS and BUILD_TYPE are those of the build tree.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/RunStep.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
# Nothing but the installed tree: the build tree's own libraries must not be found by it.
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK}/build -G ${GENERATOR}
  -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${FLAGS}
  -DCMAKE_BUILD_TYPE=${BUILD_TYPE})
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/consumer)
if(NOT OUTPUT STREQUAL "piece from 0 to 400\npiece from 400 to 1000\n")
  message(FATAL_ERROR "the consumer printed:\n${OUTPUT}")
endif()
# The installed program finds its modules beside itself, wherever the tree stands.
file(RENAME ${WORK}/prefix ${WORK}/moved)
run(${WORK}/moved/bin/quoin info ${CMAKE_CURRENT_LIST_DIR}/../../examples/flat/flat.dxf)
message(STATUS "installed, consumed and moved")
