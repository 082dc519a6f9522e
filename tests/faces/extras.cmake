# Each face as linked code, and as the file that hosts load.
pkg_check_modules(LILV IMPORTED_TARGET lilv-0)
orva_needs("lilv" "${LILV_FOUND}")
pkg_check_modules(FACES_XCB REQUIRED IMPORTED_TARGET xcb)
target_link_libraries(test_faces PRIVATE orva_module orva_lv2 orva_clap orva_vst3 orva_test_watch PkgConfig::LILV
  PkgConfig::FACES_XCB ${CMAKE_DL_LIBS})
add_dependencies(test_faces orva_lv2_bundle orva_clap_file orva_vst3_file)
target_compile_definitions(test_faces PRIVATE
  ORVA_BUNDLE="$<TARGET_FILE_DIR:orva_lv2_file>" ORVA_GOLDEN="${CMAKE_CURRENT_SOURCE_DIR}/faces/golden"
  ORVA_CLAP="$<TARGET_FILE:orva_clap_file>" ORVA_VST3="$<TARGET_FILE:orva_vst3_file>")
