# The command-line host: what is pure as a library of its own, so that tests can link it, and the program.
# Wants `header_only` (CLI11, nlohmann-json, stb) on Windows, and natively the library, `Varcolin`, to link; on Windows the
# host loads "Varcolin.dll" by itself.
if(NOT TARGET header_only)
  find_package(nlohmann_json REQUIRED)
  find_package(CLI11 REQUIRED)
  add_library(header_only INTERFACE)
  target_link_libraries(header_only INTERFACE CLI11::CLI11 nlohmann_json::nlohmann_json)
endif()

file(GLOB SOURCES CONFIGURE_DEPENDS src/host/*.cpp)
if(WIN32)
  list(FILTER SOURCES EXCLUDE REGEX "\\.native\\.cpp$")
else()
  list(FILTER SOURCES EXCLUDE REGEX "\\.windows\\.cpp$")
endif()
# what reaches the library, or is the entry point
set(PROGRAM_SOURCES ${SOURCES})
list(FILTER PROGRAM_SOURCES INCLUDE REGEX "/(main|(Library|Command)[^/]*)\\.cpp$")
list(REMOVE_ITEM SOURCES ${PROGRAM_SOURCES})

include(cmake/embed.cmake)
add_embedded(host_page host/PageFiles.h varcolin::host PageFiles ${CMAKE_SOURCE_DIR}/src/host/page *)
# a page names its one style and its one script by their hashes, and allows no others
foreach(FILE style.css script.js)
  file(SHA256 ${CMAKE_SOURCE_DIR}/src/host/page/${FILE} HASH)
  get_filename_component(NAME ${FILE} NAME_WE)
  string(TOUPPER PAGE_${NAME}_SHA256 NAME)
  set_property(SOURCE src/host/Page.cpp APPEND PROPERTY COMPILE_DEFINITIONS ${NAME}="${HASH}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/host/page/${FILE})
endforeach()

add_library(host_core STATIC ${SOURCES})
target_link_libraries(host_core PUBLIC header_only PRIVATE host_page)
add_executable(varcolin ${PROGRAM_SOURCES})
target_link_libraries(varcolin PRIVATE host_core)
if(WIN32)
  target_link_libraries(varcolin PRIVATE comctl32 gdi32 shell32 oleaut32 user32)
else()
  target_link_libraries(varcolin PRIVATE Varcolin Threads::Threads)
endif()

# Once all targets are there: the tests of the host's pure parts, and natively of the program itself.
function(add_host_to_tests)
  foreach(TESTS native_tests windows_tests)
    if(TARGET ${TESTS})
      target_link_libraries(${TESTS} PRIVATE host_core)
    endif()
  endforeach()
  if(TARGET native_tests)
    # paths of this checkout stay with the sources that want them: the others compile alike everywhere
    set_property(SOURCE ${CMAKE_SOURCE_DIR}/tests/native/HostTest.cpp
                 ${CMAKE_SOURCE_DIR}/tests/native/HostPicturesTest.cpp APPEND PROPERTY COMPILE_DEFINITIONS
                 VARCOLIN_EXE="$<TARGET_FILE:varcolin>" SAMPLE_MACHINE="${CMAKE_SOURCE_DIR}/examples/machines/sample")
    add_dependencies(native_tests varcolin)
  endif()
endfunction()
cmake_language(DEFER CALL add_host_to_tests)
