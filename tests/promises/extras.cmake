# The plug-in as linked code, with test doubles beneath it.
target_link_libraries(test_promises PRIVATE orva_test_model orva_test_watch)
