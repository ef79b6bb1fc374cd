# Builds the example against an installed Quoin and runs its commands: BUILD is the build tree to
# install, WORK a folder for it; CXX, FLAGS, BUILD_TYPE and
# GENERATOR are those of the build tree.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/RunStep.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK}/build -G ${GENERATOR}
  -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${FLAGS}
  -DCMAKE_BUILD_TYPE=${BUILD_TYPE})
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/prefix/bin/quoin run ${WORK}/build/wall_sketch.so WALLSKETCH)
string(CONCAT EXPECTED
  "shortened 4000,0 to 4000,1500\nshortened 0,3000 to 0,1500\n"
  "cut off 4000,1500 to 4000,3000\ncut off 0,1500 to 0,0\n"
  "new -500,1500 to 0,1500\nnew 0,1500 to 4000,1500\nnew 4000,1500 to 4500,1500\n")
if(NOT OUTPUT STREQUAL EXPECTED)
  message(FATAL_ERROR "the command printed:\n${OUTPUT}")
endif()

run(${WORK}/prefix/bin/quoin run ${WORK}/build/wall_sketch.so WALLFACE
  ${CMAKE_CURRENT_LIST_DIR}/../flat/flat.dxf -o ${WORK}/faced.dxf -- A-WALL-INT 120)
string(CONCAT EXPECTED "72 lines have a face at 120\n"
  "WALLFACE: 277 entities in model space, 72 new, 0 erased\nwritten: ${WORK}/faced.dxf\n")
if(NOT OUTPUT STREQUAL EXPECTED)
  message(FATAL_ERROR "the command printed:\n${OUTPUT}")
endif()
execute_process(COMMAND ${WORK}/prefix/bin/quoin run ${WORK}/build/wall_sketch.so WALLFACE
  ${CMAKE_CURRENT_LIST_DIR}/../flat/flat.dxf --dry-run -- NO-SUCH-LAYER 120
  RESULT_VARIABLE CODE ERROR_VARIABLE ERRORS OUTPUT_QUIET)
if(NOT CODE EQUAL 8 OR NOT ERRORS MATCHES "WALLFACE has failed: the drawing has no such layer")
  message(FATAL_ERROR "exit code ${CODE}: ${ERRORS}")
endif()
