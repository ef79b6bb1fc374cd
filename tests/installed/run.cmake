# Installs the build tree BUILD into WORK/prefix and looks at its binaries with the options CHECKS.
# Where libraries go into a folder of the machine's kind, the paths that would be linked are looked
# at: building all of it again would take too long.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/RunStep.cmake)

file(REMOVE_RECURSE ${WORK})
separate_arguments(CHECKS)
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${PYTHON} ${SOURCE}/scripts/check_binaries.py ${CHECKS} ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G Ninja -DCMAKE_CXX_COMPILER=${CXX}
  -DCMAKE_INSTALL_LIBDIR=lib/x86_64-linux-gnu -DQUOIN_TESTS=OFF)
run(${PYTHON} ${SOURCE}/scripts/check_binaries.py --links ${WORK}/build/build.ninja)
file(REMOVE_RECURSE ${WORK})
