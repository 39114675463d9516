# drovik_add_fuzzer(NAME CORPUS LIBRARY...): a libFuzzer program, and a short bounded run of it as a
# test, always the same one.
function(drovik_add_fuzzer name corpus)
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE ${ARGN})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  set(found "${CMAKE_CURRENT_BINARY_DIR}/found_${corpus}")
  file(MAKE_DIRECTORY "${found}")
  add_test(NAME ${name} COMMAND ${name} -runs=20000 -seed=1 -max_len=400 -timeout=20
    -rss_limit_mb=2048 "-dict=${CMAKE_CURRENT_SOURCE_DIR}/fuzz.dict"
    "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${corpus}")
  set_tests_properties(${name} PROPERTIES LABELS fuzz TIMEOUT 300)
endfunction()
