# The target `highway`: vector code with a choice of the instruction set at run time.
include_guard(GLOBAL)
if(WIN32)
  include(${PROJECT_SOURCE_DIR}/cmake/toolkit.cmake)
  add_library(highway STATIC IMPORTED)
  set_target_properties(highway PROPERTIES IMPORTED_LOCATION ${ORVA_TOOLKIT}/lib/libhwy.a
    INTERFACE_INCLUDE_DIRECTORIES ${ORVA_TOOLKIT}/include INTERFACE_COMPILE_DEFINITIONS HWY_STATIC_DEFINE)
else()
  pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
  add_library(highway INTERFACE)
  target_link_libraries(highway INTERFACE PkgConfig::HWY)
endif()
