# The bundle as a host finds it, and the linked code where a test looks inside.
pkg_check_modules(LILV IMPORTED_TARGET lilv-0)
orva_needs("lilv" "${LILV_FOUND}")
pkg_check_modules(LV2_TEST_XCB REQUIRED IMPORTED_TARGET xcb)
add_dependencies(test_lv2 orva_lv2_bundle)
target_link_libraries(test_lv2 PRIVATE orva_module orva_test_watch PkgConfig::LILV PkgConfig::LV2_TEST_XCB
  ${CMAKE_DL_LIBS})
target_compile_definitions(test_lv2 PRIVATE ORVA_BUNDLE="$<TARGET_FILE_DIR:orva_lv2_file>"
  ORVA_GOLDEN="${CMAKE_CURRENT_SOURCE_DIR}/lv2/golden")
