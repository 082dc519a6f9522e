# The target `vstgui`: the editor's widget toolkit with what it stands on.
include(${PROJECT_SOURCE_DIR}/cmake/toolkit.cmake)

if(WIN32)
  # As the library itself was built; the first makes the compiler's and the system's ABI agree for what COM returns.
  set(needs d2d1 dwrite windowscodecs d3d11 dxgi dcomp dwmapi shlwapi ole32 uuid opengl32 gdi32 version)
  set(system_definitions ";WIDL_EXPLICIT_AGGREGATE_RETURNS;VSTGUI_WIN32_CUSTOMFONT_SUPPORT=0;WIN32=1")
else()
  pkg_check_modules(VSTGUI_NEEDS REQUIRED IMPORTED_TARGET
    xcb xcb-util xcb-cursor xcb-keysyms xcb-xkb xkbcommon xkbcommon-x11
    cairo pangocairo pangoft2 freetype2 fontconfig glib-2.0 x11)
  set(needs PkgConfig::VSTGUI_NEEDS ${CMAKE_DL_LIBS})
endif()

add_library(vstgui STATIC IMPORTED)
set_target_properties(vstgui PROPERTIES
  IMPORTED_LOCATION ${ORVA_TOOLKIT}/lib/libvstgui.a
  INTERFACE_INCLUDE_DIRECTORIES ${ORVA_TOOLKIT}/include # imported, so its warnings are not ours
  # DEBUG and the rest as the library itself was built: they change the layout of its classes. The first says
  # that the records of keys come from the plug-in interface: vst2/records.h goes before any of its headers.
  INTERFACE_COMPILE_DEFINITIONS "__aeffectx__;DEBUG=0;VSTGUI_ENABLE_DEPRECATED_METHODS=1;VSTGUI_OPENGL_SUPPORT=1${system_definitions}"
  INTERFACE_LINK_LIBRARIES "${needs}")
