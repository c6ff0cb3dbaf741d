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

# What goes into a host's process or opens files of strangers, and is not under instruments.
function(qvbrisk_harden name)
  if(QVBRISK_SANITIZE OR QVBRISK_FUZZ OR NOT CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    return()
  endif()
  target_compile_options(${name} PRIVATE
    -fstack-protector-strong -fcf-protection=full
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
  # Debian's start files are marked for neither part of CET, which takes the mark from all that is linked with them. They
  # keep to the shadow stack; not all of them begin with endbr64, so the other mark (ibt) would not be true.
  target_link_options(${name} PRIVATE -Wl,-z,relro -Wl,-z,now -Wl,-z,shstk)
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
