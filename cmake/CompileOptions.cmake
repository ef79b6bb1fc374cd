# Flags that every target shares. They hang on an interface target, so that nothing
# leaks into the dependencies' own headers.
add_library(quoin_options INTERFACE)
target_compile_options(quoin_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # Results are the same bits on every machine: no fused multiply-add behind our back.
  -ffp-contract=off)
if(QUOIN_WERROR)
  target_compile_options(quoin_options INTERFACE -Werror)
endif()
# Drawings come from strangers: what a mistake of ours could do with one is kept small. The
# sanitizers watch more closely themselves; fortified functions need an optimising build.
if(NOT QUOIN_SANITIZE)
  target_compile_options(quoin_options INTERFACE -fstack-protector-strong
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
if(QUOIN_SANITIZE)
  target_compile_options(quoin_options INTERFACE
    # float-cast-overflow is no part of "undefined": a NaN or a huge coordinate that becomes an
    # integer has whatever value the processor likes.
    -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(quoin_options INTERFACE
    -fsanitize=address,undefined,float-cast-overflow)
endif()
if(QUOIN_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" OR NOT QUOIN_SANITIZE)
    message(FATAL_ERROR "QUOIN_FUZZ needs clang (libFuzzer is its own) and QUOIN_SANITIZE=ON")
  endif()
  # Coverage for the fuzzer in every library; its main function in the targets alone. The
  # address sanitizer's run-time library answers the coverage calls of the other programs.
  target_compile_options(quoin_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
