# The Windows target: the 32-bit product over the real Windows calls, and its tests. Everything lands in <build>/bin.
set(VARCOLIN_HEADERS /usr/include CACHE PATH "Where the header-only libraries of the host lie (CLI, nlohmann, stb)")
set(VARCOLIN_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
enable_language(RC)

# The build machine's own header folder must stay off the cross compiler's path: only what is wanted is linked to.
add_library(header_only INTERFACE)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
foreach(FOLDER CLI nlohmann stb)
  if(EXISTS ${VARCOLIN_HEADERS}/${FOLDER})
    file(CREATE_LINK ${VARCOLIN_HEADERS}/${FOLDER} ${CMAKE_BINARY_DIR}/include/${FOLDER} SYMBOLIC)
  endif()
endforeach()
target_include_directories(header_only SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/include)

# What the compiler's own libraries import although Windows XP lacks it; the host needs this too.
add_library(windows_xp STATIC src/platform/windows/TickCount64.cpp)
target_link_options(windows_xp INTERFACE -Wl,-u,__imp__GetTickCount64@0)

file(GLOB SOURCES CONFIGURE_DEPENDS src/platform/windows/*.cpp)
list(FILTER SOURCES EXCLUDE REGEX "/TickCount64\\.cpp$")
add_library(platform STATIC ${SOURCES})
# What is linked here is there since Windows XP; newer functions are bound at run time.
target_link_libraries(platform PUBLIC advapi32 comctl32 gdi32 ole32 oleaut32 shell32 user32 version windows_xp)
file(GLOB SOURCES CONFIGURE_DEPENDS src/platform/decorators/*.cpp)
add_library(decorators STATIC ${SOURCES})

# Every room uses the platform's OLE strings: behind support it comes last on each link line.
target_link_libraries(support PUBLIC platform)

file(GLOB SOURCES CONFIGURE_DEPENDS src/library/*.cpp)
list(FILTER SOURCES EXCLUDE REGEX "\\.(windows|native)\\.cpp$")
add_library(library STATIC ${SOURCES})
target_link_libraries(library PUBLIC locations)

# A library of the suite: one export, GetInstance, whose name is not decorated although it is stdcall.
function(add_suite_library TARGET NAME)
  add_library(${TARGET} SHARED ${ARGN})
  set_target_properties(${TARGET} PROPERTIES PREFIX "" OUTPUT_NAME ${NAME})
  target_link_options(${TARGET} PRIVATE -Wl,--enable-stdcall-fixup)
endfunction()

file(GLOB RESOURCES CONFIGURE_DEPENDS src/library/resources/*.rc)
file(GLOB RESOURCE_PARTS CONFIGURE_DEPENDS src/library/resources/*)
set_source_files_properties(${RESOURCES} PROPERTIES OBJECT_DEPENDS "${RESOURCE_PARTS}" COMPILE_DEFINITIONS
  "VARCOLIN_VERSION_MAJOR=${PROJECT_VERSION_MAJOR};VARCOLIN_VERSION_MINOR=${PROJECT_VERSION_MINOR};VARCOLIN_VERSION_PATCH=${PROJECT_VERSION_PATCH}")
file(GLOB SOURCES CONFIGURE_DEPENDS src/library/*.windows.cpp)
add_suite_library(Varcolin Varcolin ${SOURCES} src/library/Varcolin.def ${RESOURCES})
target_link_libraries(Varcolin PRIVATE library)

# The reference sibling libraries: each has one entry file, named like the library.
file(GLOB ENTRIES CONFIGURE_DEPENDS src/siblings/*.windows.cpp)
foreach(ENTRY ${ENTRIES})
  get_filename_component(NAME ${ENTRY} NAME)
  string(REGEX REPLACE "\\.windows\\.cpp$" "" NAME ${NAME})
  add_suite_library(sibling_${NAME} ${NAME} ${ENTRY} src/siblings/sibling.def)
  target_link_libraries(sibling_${NAME} PRIVATE siblings)
endforeach()

# The host reaches the library as every host does, by LoadLibrary and GetInstance: nothing of it is linked.
include(cmake/host.cmake)
target_link_libraries(varcolin PRIVATE windows_xp)
# What it loads is built with it.
get_property(SUITE DIRECTORY PROPERTY BUILDSYSTEM_TARGETS)
list(FILTER SUITE INCLUDE REGEX "^(Varcolin|sibling_.*)$")
add_dependencies(varcolin ${SUITE})

set(INSTALL_GTEST OFF CACHE INTERNAL "")
add_subdirectory(${VARCOLIN_GOOGLETEST}/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
file(GLOB SOURCES CONFIGURE_DEPENDS tests/unit/*.cpp tests/contract/*.cpp tests/windows/*.cpp)
# the simulated machine, and what tests/common builds on it, are there on the native target alone
foreach(SOURCE ${SOURCES})
  file(STRINGS ${SOURCE} SIMULATED REGEX "#include \"(common/(RealData|Services|Session)|platform/simulated/)")
  if(SIMULATED)
    list(REMOVE_ITEM SOURCES ${SOURCE})
  endif()
endforeach()
# what the tests start
add_executable(test_program tests/programs/test_program.windows.cpp)
target_link_options(test_program PRIVATE -municode -mwindows)
# The resources are those of the module that asks for them: the tests bring their own copy.
add_executable(windows_tests ${SOURCES} ${RESOURCES})
target_include_directories(windows_tests PRIVATE tests)
add_dependencies(windows_tests test_program)
set_property(SOURCE ${CMAKE_SOURCE_DIR}/tests/contract/ManifestContract.cpp APPEND PROPERTY COMPILE_DEFINITIONS
             SHARED_DATA="Z:${CMAKE_SOURCE_DIR}/../shared/data")
target_link_libraries(windows_tests PRIVATE library siblings decorators gtest gtest_main)

# The product still loads on Windows XP.
enable_testing()
add_test(NAME old_windows COMMAND ${CMAKE_COMMAND} -DOBJDUMP=${CMAKE_OBJDUMP} -DFOLDER=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
         -P ${CMAKE_SOURCE_DIR}/cmake/old-windows.cmake)
