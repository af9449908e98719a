# The benchmarks: one program for each target, of the sources that both share and of the target's own (*.native.cpp,
# *.windows.cpp). They are built with everything else, so that they keep compiling.
file(GLOB SOURCES CONFIGURE_DEPENDS benchmarks/*.cpp)
if(WIN32)
  list(FILTER SOURCES EXCLUDE REGEX "\\.native\\.cpp$")
  # the resources are those of the module that asks for them: the program brings its own copy of the library's
  list(APPEND SOURCES ${RESOURCES})
  set(BENCHMARK_LIBRARIES library decorators)
else()
  list(FILTER SOURCES EXCLUDE REGEX "\\.windows\\.cpp$")
  set(BENCHMARK_LIBRARIES native_root decorators)
endif()
add_executable(benchmarks ${SOURCES})
target_include_directories(benchmarks PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests)
if(NOT WIN32)
  set_property(SOURCE ${CMAKE_SOURCE_DIR}/benchmarks/LinkFiles.native.cpp APPEND PROPERTY COMPILE_DEFINITIONS
               READ_LINKS_SCRIPT="${CMAKE_SOURCE_DIR}/benchmarks/read_links.py")
endif()
target_link_libraries(benchmarks PRIVATE ${BENCHMARK_LIBRARIES})
