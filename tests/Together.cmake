# drovik_add_tests(LIBRARIES LABEL NAME... LABEL NAME...): tests of one folder, each under the label
# before it. For a developer each is a program as drovik_add_test makes it. Where everything is built
# at once they are one program, eight sources compiled at a time, which takes a third of the time;
# their names need not differ (`together`), and links named like the tests start it as one of them.
# A test stays alone whose class holds what is in an unnamed namespace: in an included file the
# compiler warns of that.
function(drovik_add_tests libraries)
  set(program)
  set(waiting) # for a source of eight
  foreach(name ${ARGN})
    if(name MATCHES "^(unit|gui|x11|gui\\+x11)$")
      set(label ${name})
    elseif(NOT DROVIK_TESTS_TOGETHER)
      drovik_add_test(${name} ${label} "${libraries}")
    else()
      if(NOT program)
        set(program ${name}_and_others)
        add_executable(${program} "${CMAKE_SOURCE_DIR}/tests/support/SeveralTests.cpp")
        drovik_build_test(${program} "${libraries}")
      endif()
      drovik_link_test(${program} ${name})
      drovik_register_tests(${name} ${label})
      list(APPEND waiting ${name})
      list(LENGTH waiting count)
      if(count EQUAL 8)
        drovik_compile_tests(${program} ${waiting})
        set(waiting)
      endif()
    endif()
  endforeach()
  if(waiting)
    drovik_compile_tests(${program} ${waiting})
  endif()
endfunction()

# The name of a test that is within a program.
function(drovik_link_test program name)
  add_custom_command(TARGET ${program} POST_BUILD
    COMMAND "${CMAKE_COMMAND}" -E create_symlink ${program} "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  add_custom_target(${name} DEPENDS ${program})
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
