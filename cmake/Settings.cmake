# The compiler settings that every target shares, carried by an interface target so that
# nothing is set globally.
add_library(drovik_settings INTERFACE)
target_include_directories(drovik_settings INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_definitions(drovik_settings INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_FOREACH)

# Numbers are the same on every machine: no fused multiply-add, no reordering.
target_compile_options(drovik_settings INTERFACE
  -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wold-style-cast -Wsuggest-override
  -Wshadow)
if(DROVIK_WERROR)
  target_compile_options(drovik_settings INTERFACE -Werror)
endif()
if(DROVIK_SANITIZE)
  # A target with the property DROVIK_UNSANITIZED is left out (its own options come before these).
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer)
  target_compile_options(drovik_settings INTERFACE
    "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:DROVIK_UNSANITIZED>>>:${sanitizers}>")
  target_link_options(drovik_settings INTERFACE -fsanitize=address,undefined)
endif()
if(DROVIK_SANITIZE_THREADS)
  target_compile_options(drovik_settings INTERFACE -fsanitize=thread)
  target_link_options(drovik_settings INTERFACE -fsanitize=thread)
endif()
if(DROVIK_COVERAGE)
  target_link_options(drovik_settings INTERFACE --coverage)
endif()
if(DROVIK_FUZZ)
  target_compile_options(drovik_settings INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(drovik_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

# drovik_compile_together(TARGET...): many sources of these are compiled as one, which takes a third
# of the time. A name in an unnamed namespace is then one of the whole library. The preset dev
# compiles source by source, which shows that each includes what it needs.
function(drovik_compile_together)
  set_target_properties(${ARGN} PROPERTIES
    UNITY_BUILD "${DROVIK_COMPILE_TOGETHER}"
    UNITY_BUILD_BATCH_SIZE 16
    UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include): as one")
endfunction()

# drovik_count_lines(TARGET...): the lines of these are counted, under the preset that does so. Tests
# and programs need no counts of their own.
function(drovik_count_lines)
  foreach(target ${ARGN})
    if(DROVIK_COVERAGE)
      target_compile_options(${target} PRIVATE --coverage)
    endif()
  endforeach()
endfunction()
