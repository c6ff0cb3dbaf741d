# Files as C++ string constants, made at build time.
#
#   qvbrisk_embed(<target> <namespace> <name>=<file>...)
#
# adds a source to the target that defines, per pair, `const std::string_view <namespace>::<name>` with the bytes of the
# file. Users declare them `extern`. Run as a script (cmake -P) this file does the writing.

if(CMAKE_SCRIPT_MODE_FILE)
  file(READ "${INPUT}" bytes HEX)
  string(LENGTH "${bytes}" digits)
  math(EXPR count "${digits} / 2")
  string(REGEX REPLACE "(..)" "\\\\x\\1" bytes "${bytes}")
  # Lines of 32 bytes: neighbouring literals are one, and compile far faster than a list of numbers.
  string(REPEAT "." 128 line)
  string(REGEX REPLACE "(${line})" "\\1\"\n\"" bytes "${bytes}")
  file(WRITE "${OUTPUT}" "#include <string_view>\n\nnamespace ${NAMESPACE} {\n\n"
    "extern const std::string_view ${NAME};\nconst std::string_view ${NAME}(\n\"${bytes}\",\n${count});\n\n"
    "}  // namespace ${NAMESPACE}\n")
  return()
endif()

set(QVBRISK_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_FILE})

function(qvbrisk_embed target namespace)
  foreach(pair ${ARGN})
    string(REGEX MATCH "^([^=]+)=(.+)$" matched "${pair}")
    set(name ${CMAKE_MATCH_1})
    get_filename_component(input "${CMAKE_MATCH_2}" ABSOLUTE)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/embedded/${name}.cpp)
    add_custom_command(
      OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -DINPUT=${input} -DOUTPUT=${output} -DNAMESPACE=${namespace} -DNAME=${name}
              -P ${QVBRISK_EMBED_SCRIPT}
      DEPENDS ${input} ${QVBRISK_EMBED_SCRIPT}
      COMMENT "Embedding ${name}"
      VERBATIM)
    target_sources(${target} PRIVATE ${output})
  endforeach()
endfunction()
