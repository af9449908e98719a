# The tests of the Windows target. They run under Wine, one after the other in one prefix: ctest asks each test program
# for its suites and runs every suite as a test of its own.
enable_testing()

# add_wine_tests(TARGET [FIXTURE NAME] [ENVIRONMENT NAME=VALUE])
function(add_wine_tests TARGET)
  cmake_parse_arguments(ARG "" "FIXTURE;ENVIRONMENT" "" ${ARGN})
  set(INCLUDE_FILE ${CMAKE_CURRENT_BINARY_DIR}/${TARGET}-suites.cmake)
  file(GENERATE OUTPUT ${INCLUDE_FILE} CONTENT
    "set(PROGRAM \"$<TARGET_FILE:${TARGET}>\")
set(RUN \"${CMAKE_SOURCE_DIR}/tools/wine-run\")
set(FIXTURE \"${ARG_FIXTURE}\")
set(TEST_ENVIRONMENT [[${ARG_ENVIRONMENT}]])
include(\"${CMAKE_SOURCE_DIR}/cmake/wine-suites.cmake\")
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${INCLUDE_FILE})
endfunction()

# A host that knows the boundary only, over programs that real installers have installed
file(GLOB SOURCES CONFIGURE_DEPENDS tests/boundary/*.cpp)
add_executable(boundary_tests ${SOURCES})
target_include_directories(boundary_tests PRIVATE tests)
add_dependencies(boundary_tests test_program)
target_link_libraries(boundary_tests PRIVATE gtest gtest_main oleaut32 advapi32)

add_test(NAME installers COMMAND ${CMAKE_SOURCE_DIR}/tools/wine-install test)
set_tests_properties(installers PROPERTIES FIXTURES_SETUP installed RESOURCE_LOCK wine TIMEOUT 300)
string(REPLACE "/" "\\" SETUP "Z:${CMAKE_SOURCE_DIR}/build/installers/larkspur-travel-notes.exe")
add_wine_tests(boundary_tests FIXTURE installed ENVIRONMENT "VARCOLIN_TEST_SETUP=${SETUP}")

if(TARGET windows_tests)
  add_wine_tests(windows_tests)
endif()
