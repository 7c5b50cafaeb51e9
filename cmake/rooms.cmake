# A room is a folder of sources; its library has the folder's name. Adding a file touches no CMake file.

# rooms_of(RESULT KIND): the add-in's rooms of that kind, by their names, as rooms.txt lists them.
function(rooms_of result kind)
  set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/rooms.txt)
  file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/rooms.txt rows REGEX "^${kind} ")
  list(TRANSFORM rows REPLACE "^${kind} +src/([a-z]+).*" "\\1")
  list(REMOVE_DUPLICATES rows)
  set(${result} ${rows} PARENT_SCOPE)
endfunction()

# The C++ and assembly sources below FOLDER that belong to the build's system: *_windows.* or *_posix.* go with theirs.
function(room_sources result folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.S)
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_posix\\.(cpp|S)$")
    # Windows' headers define words away that other files use.
    set(alone ${sources})
    list(FILTER alone INCLUDE REGEX "_windows(_test)?\\.cpp$")
    set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  else()
    list(FILTER sources EXCLUDE REGEX "_windows\\.(cpp|S)$")
  endif()
  set(${result} ${sources} PARENT_SCOPE)
endfunction()

# One room of the add-in. An empty folder gives a library without code, so that others may name it.
function(add_addin_room name)
  room_sources(sources ${CMAKE_CURRENT_SOURCE_DIR}/${name})
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC addin_code)
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE addin_code)
  endif()
endfunction()
