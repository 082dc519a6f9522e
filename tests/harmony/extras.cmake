# Long comparisons: worth the optimiser under a sanitizer, too.
set_target_properties(test_harmony PROPERTIES ORVA_QUICK OFF)
