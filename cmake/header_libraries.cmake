# Header-only libraries of the system. A cross compiler must not see the folder that holds them, since the C library's
# Linux headers lie there too; it gets a folder that holds links to these libraries and nothing else.

set(header_library_folder ${CMAKE_BINARY_DIR}/header_libraries)

# add_header_library(NAME FOLDER): the library whose headers are included as <FOLDER/...>.
function(add_header_library name folder)
  find_path(${name}_INCLUDE_FOLDER ${folder} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  mark_as_advanced(${name}_INCLUDE_FOLDER)
  file(MAKE_DIRECTORY ${header_library_folder}/${name})
  file(CREATE_LINK ${${name}_INCLUDE_FOLDER}/${folder} ${header_library_folder}/${name}/${folder} SYMBOLIC)
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${header_library_folder}/${name})
endfunction()
