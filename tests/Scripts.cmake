# The checks of the tree and of written drawings as tests. They run in Debian's python3 with
# its ezdxf, wherever another python3 may stand.
set(QUOIN_PYTHON /usr/bin/python3)
set(QUOIN_SCRIPTS ${CMAKE_SOURCE_DIR}/scripts)

add_test(NAME tree.includes.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_includes.py --self-test)
add_test(NAME tree.includes COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_includes.py)
add_test(NAME tree.words.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/check_words.py --self-test)
# The shipped plans are what the script draws.
add_test(NAME examples.drawn COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/make_examples.py --check)
add_test(NAME examples.audit.self_test
  COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/audit_drawings.py --self-test)
if(TARGET quoin_app)
  add_test(NAME examples.audit COMMAND ${QUOIN_PYTHON} ${QUOIN_SCRIPTS}/audit_drawings.py
    --quoin $<TARGET_FILE:quoin_app> ${CMAKE_SOURCE_DIR}/examples)
endif()
