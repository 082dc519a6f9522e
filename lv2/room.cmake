# The interface's headers, and the display for the window around the editor's.
pkg_check_modules(LV2 REQUIRED IMPORTED_TARGET lv2)
pkg_check_modules(LV2_XCB REQUIRED IMPORTED_TARGET xcb)
target_link_libraries(orva_lv2 PUBLIC PkgConfig::LV2 PRIVATE PkgConfig::LV2_XCB)
