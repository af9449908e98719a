# The native target: the library over a simulated Windows machine, and everything that only a native build allows.
find_package(nlohmann_json REQUIRED)
find_package(pugixml REQUIRED)
find_package(CLI11 REQUIRED)
find_package(GTest REQUIRED)

file(GLOB SOURCES CONFIGURE_DEPENDS src/platform/simulated/*.cpp)
add_library(platform STATIC ${SOURCES})
target_link_libraries(platform PUBLIC support PRIVATE nlohmann_json::nlohmann_json pugixml::pugixml)
file(GLOB SOURCES CONFIGURE_DEPENDS src/platform/decorators/*.cpp)
if(SOURCES)
  add_library(decorators STATIC ${SOURCES})
else()
  add_library(decorators INTERFACE)
endif()

include(cmake/embed.cmake)
add_embedded(embedded_machine platform/simulated/Embedded.h varcolin EmbeddedMachine
             ${CMAKE_SOURCE_DIR}/examples/machines/sample *)
add_embedded(embedded_resources platform/simulated/Embedded.h varcolin EmbeddedResources
             ${CMAKE_SOURCE_DIR}/src/library/resources *.ico)

# everything of src/library but the export
file(GLOB SOURCES CONFIGURE_DEPENDS src/library/*.cpp)
list(FILTER SOURCES EXCLUDE REGEX "\\.(windows|native)\\.cpp$")
add_library(library STATIC ${SOURCES})
target_link_libraries(library PUBLIC locations platform siblings)

# the composition root is a library of its own, so that tests can install the suite on machines of their own
add_library(native_root STATIC src/library/NativeRoot.native.cpp)
target_link_libraries(native_root PUBLIC library embedded_machine embedded_resources)

add_library(Varcolin SHARED src/library/Varcolin.native.cpp)
target_link_libraries(Varcolin PRIVATE native_root)

if(VARCOLIN_FUZZ)
  include(cmake/fuzz.cmake)
  return()
endif()

include(cmake/host.cmake)

enable_testing()
include(GoogleTest)
file(GLOB SOURCES CONFIGURE_DEPENDS tests/common/*.cpp tests/unit/*.cpp tests/contract/*.cpp tests/scenario/*.cpp
     tests/native/*.cpp)
if(SOURCES)
  add_executable(native_tests ${SOURCES})
  target_include_directories(native_tests PRIVATE tests)
  set_property(SOURCE tests/scenario/RealRegistryTest.cpp tests/scenario/UpdatesTest.cpp tests/native/RealLinksTest.cpp
               ${CMAKE_SOURCE_DIR}/tests/contract/ManifestContract.cpp APPEND PROPERTY COMPILE_DEFINITIONS
               SHARED_DATA="${CMAKE_SOURCE_DIR}/../shared/data")
  target_link_libraries(native_tests PRIVATE native_root decorators nlohmann_json::nlohmann_json GTest::gtest GTest::gtest_main)
  gtest_discover_tests(native_tests DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 300)
endif()
