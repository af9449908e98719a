# Libraries whose content is a folder's files, byte by byte: the sample machine image, the library's icons, the parts of
# the host's pages.

# Adds the static library TARGET with a function FUNCTION over all files below FOLDER whose names match PATTERN. HEADER
# declares it in NAMESPACE, and there the record TEmbeddedFile (name, first byte, size). It is built again when a file
# changes, appears or vanishes.
function(add_embedded TARGET HEADER NAMESPACE FUNCTION FOLDER PATTERN)
  file(GLOB_RECURSE FILES CONFIGURE_DEPENDS LIST_DIRECTORIES false ${FOLDER}/${PATTERN})
  list(SORT FILES)
  # the object formats differ in the name of the section for constants, and 32-bit Windows puts _ before C names
  if(WIN32)
    set(ASSEMBLY "  .section .rdata,\"dr\"\n")
    set(PREFIX _)
  else()
    set(ASSEMBLY "  .section .note.GNU-stack,\"\",%progbits\n  .section .rodata\n")
    set(PREFIX "")
  endif()
  set(DECLARATIONS "")
  set(ROWS "")
  set(INDEX 0)
  foreach(FILE IN LISTS FILES)
    file(RELATIVE_PATH NAME ${FOLDER} ${FILE})
    set(SYMBOL ${TARGET}_${INDEX})
    set(LABEL ${PREFIX}${SYMBOL})
    string(APPEND ASSEMBLY "  .global ${LABEL}_begin\n  .global ${LABEL}_end\n  .balign 16\n"
                           "${LABEL}_begin:\n  .incbin \"${FILE}\"\n${LABEL}_end:\n  .byte 0\n")
    string(APPEND DECLARATIONS "extern \"C\" const unsigned char ${SYMBOL}_begin[];\n"
                               "extern \"C\" const unsigned char ${SYMBOL}_end[];\n")
    string(APPEND ROWS "      {R\"name(${NAME})name\", ${SYMBOL}_begin,\n"
                       "       static_cast<std::size_t>(${SYMBOL}_end - ${SYMBOL}_begin)},\n")
    math(EXPR INDEX "${INDEX} + 1")
  endforeach()
  if(ROWS STREQUAL "")
    set(BODY "  return {};\n")
  else()
    set(BODY "  static const TEmbeddedFile Files[] = {\n${ROWS}  };\n  return Files;\n")
  endif()
  set(GENERATED ${CMAKE_CURRENT_BINARY_DIR}/embedded)
  file(GENERATE OUTPUT ${GENERATED}/${TARGET}.s CONTENT "${ASSEMBLY}")
  file(GENERATE OUTPUT ${GENERATED}/${TARGET}.cpp CONTENT "#include \"${HEADER}\"

${DECLARATIONS}
namespace ${NAMESPACE} {

std::span<const TEmbeddedFile> ${FUNCTION}() noexcept {
${BODY}}

}  // namespace ${NAMESPACE}
")
  set_source_files_properties(${GENERATED}/${TARGET}.s PROPERTIES LANGUAGE ASM OBJECT_DEPENDS "${FILES}")
  add_library(${TARGET} STATIC ${GENERATED}/${TARGET}.s ${GENERATED}/${TARGET}.cpp)
endfunction()
