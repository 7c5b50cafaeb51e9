# How this project's own code is compiled. Targets link `own_code`; everything that becomes part of the add-in links
# `addin_code`. What is other people's (GoogleTest) gets the sanitizers alone.

set(QUILLMERE_SANITIZERS "" CACHE STRING "Sanitizers of the build, as -fsanitize= takes them")
if(QUILLMERE_SANITIZERS)
  add_compile_options(-fsanitize=${QUILLMERE_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUILLMERE_SANITIZERS})
endif()

if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(CCACHE_PROGRAM ccache NO_CMAKE_FIND_ROOT_PATH)
  mark_as_advanced(CCACHE_PROGRAM)
  if(CCACHE_PROGRAM)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  endif()
endif()

find_package(Threads REQUIRED)

# Designated initializers leave out on purpose what keeps its default, so that warning is off.
add_library(own_code INTERFACE)
target_compile_options(
  own_code
  INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wno-sign-conversion
            -Wno-missing-field-initializers
            -Wnon-virtual-dtor
            -Wold-style-cast
            -Woverloaded-virtual
            -Wmissing-declarations
            -Werror>
            -fstack-protector-strong)
target_link_libraries(own_code INTERFACE Threads::Threads)

if(WIN32)
  # -static leaves no import of libwinpthread, libgcc or libstdc++. The three marks are this linker's defaults, said
  # here all the same: tests/checks/hardening holds every build to them.
  target_compile_definitions(own_code INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  target_link_options(own_code INTERFACE -static -fstack-protector-strong -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
else()
  target_link_options(own_code INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    # Needs optimisation, and would hide from the sanitizers what they are there to see.
    target_compile_definitions(own_code INTERFACE _FORTIFY_SOURCE=2)
  endif()
  include(CheckPIESupported)
  check_pie_supported()
endif()

# A fault of the processor becomes a C++ exception: code compiled without -fnon-call-exceptions would lose its
# destructors then. Only what is marked for export leaves the library.
add_library(addin_code INTERFACE)
target_compile_options(addin_code INTERFACE -fnon-call-exceptions)
if(NOT WIN32)
  target_compile_options(addin_code INTERFACE -fvisibility=hidden $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>)
endif()
target_include_directories(addin_code INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_link_libraries(addin_code INTERFACE own_code)
