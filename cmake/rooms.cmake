# orva_room(NAME USES other...): the static library orva_NAME from the sources of folder NAME.
# A room without sources yet (headers only) becomes an interface library, so that others can name it.
function(orva_room name)
  cmake_parse_arguments(room "" "" "USES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${name}/*.cpp)
  list(TRANSFORM room_USES PREPEND orva_)
  if(sources)
    add_library(orva_${name} STATIC ${sources})
    target_link_libraries(orva_${name} PUBLIC orva_flags ${room_USES})
  else()
    add_library(orva_${name} INTERFACE)
    target_link_libraries(orva_${name} INTERFACE orva_flags ${room_USES})
  endif()
  if(EXISTS ${PROJECT_SOURCE_DIR}/${name}/room.cmake)
    include(${PROJECT_SOURCE_DIR}/${name}/room.cmake) # libraries that this room alone stands on
  endif()
endfunction()

# The plug-in module: every room in one file that exports the three entry points and nothing else.
# It stays mapped once loaded (-z nodelete): the editor's text library does not survive a second load.
# The entry symbols, `main` among them, exist in the module only, never in a static library.
function(orva_module)
  add_library(orva_vst MODULE ${PROJECT_SOURCE_DIR}/module/entry/entry_points.cpp)
  set_target_properties(orva_vst PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  target_link_libraries(orva_vst PRIVATE orva_module Threads::Threads)
  set(exports ${PROJECT_SOURCE_DIR}/module/exports.map)
  target_link_options(orva_vst PRIVATE
    -Wl,--version-script=${exports} -Wl,-Bsymbolic -Wl,--exclude-libs,ALL
    -Wl,-z,nodelete -Wl,-z,now -Wl,-z,relro -Wl,-z,noexecstack)
  if(NOT ORVA_SANITIZE)
    target_link_options(orva_vst PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(orva_vst PROPERTIES LINK_DEPENDS ${exports})
endfunction()
