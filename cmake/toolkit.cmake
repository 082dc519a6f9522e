# What toolkit/build makes at the first configuring, in ORVA_TOOLKIT: the window's widget toolkit, and for Windows
# Highway beside it. The sanitizer presets take an instrumented build.
include_guard(GLOBAL)
set(flavour plain)
if(ORVA_SANITIZE)
  set(flavour ${ORVA_SANITIZE})
elseif(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(flavour windows32)
elseif(WIN32)
  set(flavour windows)
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/toolkit/build)
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/cmake/toolkit/build ${flavour}
  OUTPUT_VARIABLE toolkit_folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ORVA_TOOLKIT ${toolkit_folder} CACHE INTERNAL "")
