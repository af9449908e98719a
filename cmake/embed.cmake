# Libraries whose content is a folder's files, byte by byte: the sample machine image and the library's icons.

# Adds the static library TARGET with a function FUNCTION (declared in platform/simulated/Embedded.h) over all files
# below FOLDER whose names match PATTERN. It is built again when a file changes, appears or vanishes.
function(add_embedded TARGET FUNCTION FOLDER PATTERN)
  file(GLOB_RECURSE FILES CONFIGURE_DEPENDS LIST_DIRECTORIES false ${FOLDER}/${PATTERN})
  list(SORT FILES)
  set(ASSEMBLY "  .section .rodata\n")
  set(DECLARATIONS "")
  set(ROWS "")
  set(INDEX 0)
  foreach(FILE IN LISTS FILES)
    file(RELATIVE_PATH NAME ${FOLDER} ${FILE})
    set(SYMBOL ${TARGET}_${INDEX})
    string(APPEND ASSEMBLY "  .global ${SYMBOL}_begin\n  .global ${SYMBOL}_end\n  .balign 16\n"
                           "${SYMBOL}_begin:\n  .incbin \"${FILE}\"\n${SYMBOL}_end:\n  .byte 0\n")
    string(APPEND DECLARATIONS "extern \"C\" const unsigned char ${SYMBOL}_begin[];\n"
                               "extern \"C\" const unsigned char ${SYMBOL}_end[];\n")
    string(APPEND ROWS "      {R\"name(${NAME})name\", ${SYMBOL}_begin,\n"
                       "       static_cast<std::size_t>(${SYMBOL}_end - ${SYMBOL}_begin)},\n")
    math(EXPR INDEX "${INDEX} + 1")
  endforeach()
  string(APPEND ASSEMBLY "  .section .note.GNU-stack,\"\",%progbits\n")
  if(ROWS STREQUAL "")
    set(BODY "  return {};\n")
  else()
    set(BODY "  static const TEmbeddedFile Files[] = {\n${ROWS}  };\n  return Files;\n")
  endif()
  set(GENERATED ${CMAKE_CURRENT_BINARY_DIR}/embedded)
  file(GENERATE OUTPUT ${GENERATED}/${TARGET}.s CONTENT "${ASSEMBLY}")
  file(GENERATE OUTPUT ${GENERATED}/${TARGET}.cpp CONTENT "#include \"platform/simulated/Embedded.h\"

${DECLARATIONS}
namespace varcolin {

std::span<const TEmbeddedFile> ${FUNCTION}() noexcept {
${BODY}}

}  // namespace varcolin
")
  set_source_files_properties(${GENERATED}/${TARGET}.s PROPERTIES LANGUAGE ASM OBJECT_DEPENDS "${FILES}")
  add_library(${TARGET} STATIC ${GENERATED}/${TARGET}.s ${GENERATED}/${TARGET}.cpp)
endfunction()

add_embedded(embedded_machine EmbeddedMachine ${CMAKE_SOURCE_DIR}/examples/machines/sample *)
add_embedded(embedded_resources EmbeddedResources ${CMAKE_SOURCE_DIR}/src/library/resources *.ico)
