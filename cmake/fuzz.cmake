# The fuzzers: fuzz/NAME.cpp becomes the program fuzz_NAME. Besides, the program that writes the seeds which are built
# rather than kept as files.
add_custom_target(fuzzers)
file(GLOB SOURCES CONFIGURE_DEPENDS fuzz/*.cpp)
foreach(SOURCE ${SOURCES})
  get_filename_component(NAME ${SOURCE} NAME_WE)
  add_executable(fuzz_${NAME} ${SOURCE})
  target_include_directories(fuzz_${NAME} PRIVATE ${CMAKE_SOURCE_DIR} tests)
  target_link_libraries(fuzz_${NAME} PRIVATE native_root)
  target_link_options(fuzz_${NAME} PRIVATE -fsanitize=fuzzer)
  add_dependencies(fuzzers fuzz_${NAME})
endforeach()

add_executable(write_seeds fuzz/seeds/main.cpp)
target_include_directories(write_seeds PRIVATE tests)
add_dependencies(fuzzers write_seeds)
