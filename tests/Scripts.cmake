# The checks of the tree and of written drawings as tests. They run in Debian's python3 with
# its ezdxf, wherever another python3 may stand.
set(QUOIN_PYTHON /usr/bin/python3)
set(QUOIN_SCRIPTS ${PROJECT_SOURCE_DIR}/scripts)

add_test(NAME tree.includes.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_includes.py --self-test)
add_test(NAME tree.includes COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_includes.py)
add_test(NAME tree.words.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_words.py --self-test)
add_test(NAME tree.bench.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/bench_table.py --self-test)
add_test(NAME tree.bench_files.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/bench_files.py --self-test)
# Random plans with their truth, and the judge of what was read from them.
add_test(NAME tree.plan_rounds
  COMMAND ${QUOIN_PYTHON} ${PROJECT_SOURCE_DIR}/tests/scripts/plan_rounds_test.py)
set_tests_properties(tree.plan_rounds PROPERTIES ENVIRONMENT PYTHONDONTWRITEBYTECODE=1)
add_test(NAME tree.bench_plans.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/bench_plans.py --self-test)
add_test(NAME tree.bench_pictures.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/bench_pictures.py --self-test)
set_tests_properties(tree.bench_plans.self_test tree.bench_pictures.self_test PROPERTIES
  ENVIRONMENT PYTHONDONTWRITEBYTECODE=1)
# The shipped plans are what the script draws.
add_test(NAME examples.drawn COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/make_examples.py --check)
add_test(NAME examples.audit.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/audit_drawings.py --self-test)
add_test(NAME examples.damage.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/damage_drawings.py --self-test)
# A few of the damaged drawings that `./dev damage` tries by the hundred.
add_test(NAME examples.damage COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/damage_drawings.py
  --quoin $<TARGET_FILE:quoin_app> --count 8 ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus)
add_test(NAME examples.audit COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/audit_drawings.py
  --quoin $<TARGET_FILE:quoin_app> ${PROJECT_SOURCE_DIR}/examples)

# What is built and what is installed: where it looks for libraries, and how it is hardened. The
# sanitizers have their own flags; only an optimising build has checked library functions.
add_test(NAME binaries.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_binaries.py --self-test)
set(BINARY_CHECKS)
if(NOT QUOIN_SANITIZE)
  list(APPEND BINARY_CHECKS --hardened)
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    list(APPEND BINARY_CHECKS --fortified)
  endif()
endif()
set(PYTHON_BINARIES)
if(QUOIN_PYTHON_PACKAGE)
  set(PYTHON_BINARIES ${PROJECT_BINARY_DIR}/python)
endif()
add_test(NAME binaries.built COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_binaries.py
  ${BINARY_CHECKS} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}
  ${PROJECT_BINARY_DIR}/test_modules ${PYTHON_BINARIES})
set_tests_properties(binaries.built PROPERTIES LABELS install)
if(QUOIN_INSTALL)
  list(JOIN BINARY_CHECKS " " BINARY_CHECKS)
  add_test(NAME binaries.installed COMMAND ${CMAKE_COMMAND}
    -DBUILD=${PROJECT_BINARY_DIR} -DSOURCE=${PROJECT_SOURCE_DIR} -DWORK=${PROJECT_BINARY_DIR}/installed
    -DPYTHON=${QUOIN_PYTHON} -DCHECKS=${BINARY_CHECKS} -DCXX=${CMAKE_CXX_COMPILER}
    -P ${PROJECT_SOURCE_DIR}/tests/installed/run.cmake)
  set_tests_properties(binaries.installed PROPERTIES LABELS install)
endif()
