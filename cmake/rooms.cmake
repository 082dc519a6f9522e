# What is particular to an operating system lies in a folder of its name, below the room's.
string(TOLOWER ${CMAKE_SYSTEM_NAME} ORVA_SYSTEM)

# orva_room(NAME USES other...): the static library orva_NAME from the sources of folder NAME.
# A room without sources yet (headers only) becomes an interface library, so that others can name it.
function(orva_room name)
  cmake_parse_arguments(room "" "" "USES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${name}/*.cpp
       ${PROJECT_SOURCE_DIR}/${name}/${ORVA_SYSTEM}/*.cpp)
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

# orva_plugin_file(TARGET ENTRY EXPORTS ROOM): a file that hosts load, made of the source ENTRY and the static
# library ROOM; it exports the names of the version script EXPORTS and nothing else.
# It stays mapped once loaded (-z nodelete): the editor's text library does not survive a second load.
# The entry symbols exist in the file only, never in a static library.
# Windows has another list of names, and nothing that keeps a module loaded: the editor sees to it where it must.
function(orva_plugin_file target entry exports room)
  add_library(${target} MODULE ${PROJECT_SOURCE_DIR}/${entry})
  set_target_properties(${target} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
  target_link_libraries(${target} PRIVATE ${room} Threads::Threads)
  set(exports ${PROJECT_SOURCE_DIR}/${exports})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${exports})
  if(WIN32)
    string(REPLACE .map .def definitions ${exports})
    target_sources(${target} PRIVATE ${definitions})
    target_link_options(${target} PRIVATE -s -Wl,--no-insert-timestamp)
    return()
  endif()
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${exports} -Wl,-Bsymbolic -Wl,--exclude-libs,ALL
    -Wl,-z,nodelete -Wl,-z,now -Wl,-z,relro -Wl,-z,noexecstack)
  if(NOT ORVA_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

# The plug-in for VST 2 hosts: every room in one file with three entry points, `main` among them.
function(orva_module)
  orva_plugin_file(orva_vst module/entry/entry_points.cpp module/exports.map orva_module)
  if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    set_target_properties(orva_vst PROPERTIES OUTPUT_NAME orva_vst_32) # beside that of 64 bits
  endif()
endfunction()

# The settings to begin with, as files for VST 2 hosts, by a program that knows the same table as the plug-in.
function(orva_vst2_presets)
  set(folder ${PROJECT_BINARY_DIR}/presets)
  add_executable(orva_presets ${PROJECT_SOURCE_DIR}/module/presets/main.cpp)
  target_link_libraries(orva_presets PRIVATE orva_parameters Threads::Threads)
  add_custom_command(OUTPUT ${folder}/Initial.fxp COMMAND orva_presets ${folder} DEPENDS orva_presets
    VERBATIM COMMENT "Writing the presets for VST 2 hosts")
  add_custom_target(orva_vst_presets ALL DEPENDS ${folder}/Initial.fxp)
endfunction()

# The plug-in for LV2 hosts: a folder with the file that they load and its description, which is written by a
# program that knows the same tables as the plug-in.
function(orva_lv2_bundle)
  set(bundle ${PROJECT_BINARY_DIR}/orva.lv2)
  orva_plugin_file(orva_lv2_file lv2/entry/entry_points.cpp lv2/exports.map orva_lv2)
  set_target_properties(orva_lv2_file PROPERTIES OUTPUT_NAME orva_lv2 LIBRARY_OUTPUT_DIRECTORY ${bundle})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/lv2/describe/*.cpp)
  add_executable(orva_lv2_describe ${sources})
  target_link_libraries(orva_lv2_describe PRIVATE orva_lv2 Threads::Threads)
  set(description ${bundle}/manifest.ttl ${bundle}/orva.ttl ${bundle}/presets.ttl)
  add_custom_command(OUTPUT ${description}
    COMMAND orva_lv2_describe ${bundle} $<TARGET_FILE_NAME:orva_lv2_file> ${PROJECT_VERSION_MINOR}
    DEPENDS orva_lv2_describe VERBATIM COMMENT "Describing the LV2 plug-in")
  add_custom_target(orva_lv2_bundle ALL DEPENDS ${description})
  add_dependencies(orva_lv2_bundle orva_lv2_file)
endfunction()

# The plug-in for CLAP hosts: one file.
function(orva_clap_file)
  orva_plugin_file(orva_clap_file clap/entry/entry_points.cpp clap/exports.map orva_clap)
  set_target_properties(orva_clap_file PROPERTIES OUTPUT_NAME orva SUFFIX .clap)
endfunction()

# The plug-in for VST 3 hosts: a folder as they want it.
function(orva_vst3_bundle)
  orva_plugin_file(orva_vst3_file vst3/entry/entry_points.cpp vst3/exports.map orva_vst3)
  set(folder ${CMAKE_SYSTEM_PROCESSOR}-linux)
  if(WIN32)
    set(folder ${CMAKE_SYSTEM_PROCESSOR}-win)
    set_target_properties(orva_vst3_file PROPERTIES SUFFIX .vst3)
  endif()
  set_target_properties(orva_vst3_file PROPERTIES OUTPUT_NAME orva
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/orva.vst3/Contents/${folder})
endfunction()
