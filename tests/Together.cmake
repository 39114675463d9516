# drovik_add_tests(LABEL LIBRARIES NAME...): tests that need nothing but LIBRARIES, a list. Each is a
# program as drovik_add_test makes it. Where libraries are compiled together these tests are one
# program, eight sources compiled at a time, which takes half the time; their names need not differ
# (`together`). Links named like the tests start it as one of them. A test stays alone whose class
# holds what is in an unnamed namespace: in an included file the compiler warns of that.
function(drovik_add_tests label libraries)
  if(NOT tests_together)
    foreach(name ${ARGN})
      drovik_add_test(${name} ${label} "${libraries}")
    endforeach()
    return()
  endif()
  list(GET ARGN 0 program)
  string(APPEND program _and_others)
  add_executable(${program} "${CMAKE_SOURCE_DIR}/tests/support/SeveralTests.cpp")
  drovik_build_test(${program} "${libraries}")
  set(names)
  foreach(name ${ARGN})
    list(APPEND names ${name})
    list(LENGTH names count)
    if(count EQUAL 8)
      drovik_compile_tests(${program} ${names})
      set(names)
    endif()
  endforeach()
  if(names)
    drovik_compile_tests(${program} ${names})
  endif()
  foreach(name ${ARGN})
    add_custom_command(TARGET ${program} POST_BUILD
      COMMAND "${CMAKE_COMMAND}" -E create_symlink ${program} "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    add_custom_target(${name} DEPENDS ${program})
    drovik_register_tests(${name} ${label})
  endforeach()
endfunction()

# Adds the sources of some tests to a program as one.
function(drovik_compile_tests program first)
  set(together "${CMAKE_SOURCE_DIR}/tests/together")
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${first}_and_others.cpp")
  set(tests)
  set(mocs)
  foreach(name ${first} ${ARGN})
    list(APPEND tests "${CMAKE_CURRENT_SOURCE_DIR}/${name}.cpp")
    drovik_test_moc(${name} moc)
    list(APPEND mocs "${moc}")
  endforeach()
  add_custom_command(OUTPUT "${source}"
    COMMAND "${together}" ${tests} > "${source}"
    DEPENDS "${together}" ${tests} VERBATIM)
  target_sources(${program} PRIVATE "${source}" ${mocs})
endfunction()
