# One set of flags for every room. The recognition is defined to the operation, so no flag here may let
# the compiler merge, reorder or approximate floating-point arithmetic.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g")

set(ORVA_SANITIZE "" CACHE STRING "address (with undefined), thread, or empty")

add_library(orva_flags INTERFACE)
target_include_directories(orva_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(orva_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wold-style-cast -Wvla -Werror
  -ffp-contract=off -fstack-protector-strong
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(orva_flags INTERFACE -fno-gnu-unique)
else()
  target_compile_options(orva_flags INTERFACE -Wthread-safety) # base/thread_annotations.h
endif()
if(WIN32)
  target_compile_definitions(orva_flags INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
  target_link_options(orva_flags INTERFACE -fstack-protector-strong -static) # nothing but the system is needed
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Arithmetic as with 64 bits, and hosts that align the stack to 4 bytes.
    target_compile_options(orva_flags INTERFACE -msse2 -mfpmath=sse -mstackrealign)
  else()
    # The compiler believes in a stack of 32 bytes' alignment, which the system does not give.
    target_compile_options(orva_flags INTERFACE -Wa,-muse-unaligned-vector-move)
  endif()
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  target_compile_options(orva_flags INTERFACE -fcf-protection)
endif()

# Code that is only there to test the product, and the command line under a sanitizer, costs more to compile than to
# run: orva_quick() makes one source of a target's files and does not optimise them; orva_one_source() does only the
# first. A class of an unnamed namespace is then used outside of its source, which is what the warning is about.
function(orva_one_source)
  set_target_properties(${ARGN} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
  foreach(target ${ARGN})
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endforeach()
endfunction()
function(orva_quick)
  orva_one_source(${ARGN})
  set_target_properties(${ARGN} PROPERTIES ORVA_QUICK ON)
endfunction()
set(quick $<BOOL:$<TARGET_PROPERTY:ORVA_QUICK>>)
set(sanitized -O$<NOT:${quick}> -g1)
if(ORVA_SANITIZE STREQUAL "address")
  target_compile_options(orva_flags INTERFACE ${sanitized} -fno-omit-frame-pointer
    -fsanitize=address,undefined,float-cast-overflow,float-divide-by-zero -fno-sanitize-recover=all)
  target_link_options(orva_flags INTERFACE -fsanitize=address,undefined)
elseif(ORVA_SANITIZE STREQUAL "thread")
  target_compile_options(orva_flags INTERFACE ${sanitized} -fno-omit-frame-pointer -fsanitize=thread)
  target_link_options(orva_flags INTERFACE -fsanitize=thread)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(orva_flags INTERFACE
    "$<IF:${quick},-O0,-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;$<$<CXX_COMPILER_ID:GNU>:-Wstack-usage=8192>>")
endif()
