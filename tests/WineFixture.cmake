# Wine keeps a server per prefix. Left to itself the first test program would start it, the server would
# inherit that program's output pipe and CTest would wait for it; and each later program would pay the start
# again. So one process that does nothing holds the server up while the tests run.

if(NOT WIN32)
  function(zentra_needs_wine)
  endfunction()
  return()
endif()

set(hold ${PROJECT_SOURCE_DIR}/cmake/wine-hold)
add_test(NAME wine_up COMMAND ${hold} up)
add_test(NAME wine_down COMMAND ${hold} down)
set_tests_properties(wine_up wine_down PROPERTIES ENVIRONMENT ZENTRA_WINEARCH=win${ZENTRA_BITS})
set_tests_properties(wine_up PROPERTIES FIXTURES_SETUP wine)
set_tests_properties(wine_down PROPERTIES FIXTURES_CLEANUP wine)

function(zentra_needs_wine test)
  set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED wine)
endfunction()
