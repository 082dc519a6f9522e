# All that the thread sanitizer's preset needs to build: what really runs on several threads.
pkg_check_modules(THREADS_XCB REQUIRED IMPORTED_TARGET xcb)
target_link_libraries(test_threads PRIVATE orva_module PkgConfig::THREADS_XCB)
