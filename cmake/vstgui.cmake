# The target `vstgui`: the editor's widget toolkit with what it stands on. scripts/toolkit builds it at the first
# configuring and says where it lies; the sanitizer presets take an instrumented build.
set(flavour plain)
if(ORVA_SANITIZE)
  set(flavour ${ORVA_SANITIZE})
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/scripts/toolkit)
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/toolkit ${flavour}
  OUTPUT_VARIABLE vstgui_root OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

pkg_check_modules(VSTGUI_NEEDS REQUIRED IMPORTED_TARGET
  xcb xcb-util xcb-cursor xcb-keysyms xcb-xkb xkbcommon xkbcommon-x11
  cairo pangocairo pangoft2 freetype2 fontconfig glib-2.0 x11)

add_library(vstgui STATIC IMPORTED)
set_target_properties(vstgui PROPERTIES
  IMPORTED_LOCATION ${vstgui_root}/lib/libvstgui.a
  INTERFACE_INCLUDE_DIRECTORIES ${vstgui_root}/include # imported, so its warnings are not ours
  # DEBUG and the rest as the library itself was built: they change the layout of its classes. The first tells it
  # that the records of keys come from the plug-in interface: vst2/records.h goes before any of its headers.
  INTERFACE_COMPILE_DEFINITIONS "__aeffectx__;DEBUG=0;VSTGUI_ENABLE_DEPRECATED_METHODS=1;VSTGUI_OPENGL_SUPPORT=1"
  INTERFACE_LINK_LIBRARIES "PkgConfig::VSTGUI_NEEDS;${CMAKE_DL_LIBS}")
