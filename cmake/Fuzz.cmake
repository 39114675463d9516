# drovik_add_fuzzer(NAME CORPUS LENGTH): tests/fuzz/NAME.cpp as a libFuzzer program, and a short run
# of it as a test, with inputs of at most LENGTH bytes. Those that reach something new are kept in
# the build folder.
function(drovik_add_fuzzer name corpus length)
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE drovik_reader_checks)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  set(found "${CMAKE_CURRENT_BINARY_DIR}/found_${corpus}")
  file(MAKE_DIRECTORY "${found}")
  add_test(NAME ${name} COMMAND ${name} -runs=20000 -seed=1 -max_len=${length} -timeout=20
    "-artifact_prefix=${CMAKE_CURRENT_BINARY_DIR}/"
    "-dict=${CMAKE_CURRENT_SOURCE_DIR}/fuzz.dict" "${found}" "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${corpus}")
  set_tests_properties(${name} PROPERTIES LABELS fuzz TIMEOUT 300)
  # The files that the readers get are written in memory where there is such a place.
  if(IS_DIRECTORY /dev/shm)
    set_tests_properties(${name} PROPERTIES ENVIRONMENT TMPDIR=/dev/shm)
  endif()
endfunction()
