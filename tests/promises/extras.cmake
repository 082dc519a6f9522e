# The plug-in both as linked code, with test doubles beneath it, and as the module's file.
pkg_check_modules(XCB_TESTS IMPORTED_TARGET xcb-xtest)
orva_needs("xcb-xtest" "${XCB_TESTS_FOUND}")
target_link_libraries(test_promises PRIVATE orva_module orva_test_watch PkgConfig::XCB_TESTS ${CMAKE_DL_LIBS})
target_compile_definitions(test_promises PRIVATE ORVA_MODULE_FILE="$<TARGET_FILE:orva_vst>")
add_dependencies(test_promises orva_vst)
