# What every target of this tree is compiled with.
function(qvbrisk_target name)
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
  target_compile_options(${name} PRIVATE
    -Wall -Wextra -Wshadow -Wconversion $<$<BOOL:${QVBRISK_WERROR}>:-Werror>
    -ffp-contract=off) # the same numbers from every compiler and at every optimisation level
  if(QVBRISK_SANITIZE)
    # Instrumented code makes GCC 12 see uninitialised values inside the standard library; the plain builds look for them.
    target_compile_options(${name} PRIVATE
      -fsanitize=${QVBRISK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -Wno-maybe-uninitialized)
    target_link_options(${name} PUBLIC -fsanitize=${QVBRISK_SANITIZE})
  endif()
endfunction()

# Objects that were compiled before, in whatever folder, come from a compiler cache where one is installed.
find_program(QVBRISK_CCACHE ccache DOC "Compiler cache, used where one is installed")
mark_as_advanced(QVBRISK_CCACHE)
if(QVBRISK_CCACHE)
  # It passes sources with a precompiled header by unless it may take the header's own time and macros for unchanged.
  set(launcher env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${QVBRISK_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()
