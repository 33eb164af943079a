# qel_module(Name SOURCES ... KERNELS ... SSE41 ... TESTS ...)
#
# One folder, one object library, and all policy in one place. Each unit is compiled once and serves the shared library
# and the tests alike: so tests see hidden classes, and no linker drops a unit that only registers itself.
#   SOURCES  plain units
#   KERNELS  units whose loops the compiler shall vectorise (-O3)
#   SSE41    units of row kernels for SSE 4.1, and nothing else: see ARCHITECTURE.md on levels
#   TESTS    GoogleTest units, linked into one executable test_<Name>

add_library(quelide_policy INTERFACE)
target_compile_features(quelide_policy INTERFACE cxx_std_20)
target_compile_options(quelide_policy INTERFACE
  -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual
  # The same bits everywhere: no fused multiply-add, whatever processor a unit is compiled for.
  -ffp-contract=off
  # Recorded paths are those of the project, not of the machine.
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(QUELIDE_WERROR)
  target_compile_options(quelide_policy INTERFACE -Werror)
endif()
target_include_directories(quelide_policy INTERFACE ${PROJECT_SOURCE_DIR})
target_link_libraries(quelide_policy INTERFACE
  Threads::Threads Boost::headers Boost::filesystem Boost::iostreams TBB::tbb Eigen3::Eigen xsimd PkgConfig::CPUID)

# What the shared library and each test link.
add_library(quelide_objects INTERFACE)
target_link_libraries(quelide_objects INTERFACE quelide_policy)

# The test support of Core/tests/Support, for the tests of every module.
function(qel_module name)
  cmake_parse_arguments(arg "" "" "SOURCES;KERNELS;SSE41;TESTS" ${ARGN})
  set(target qel_${name})
  add_library(${target} OBJECT ${arg_SOURCES} ${arg_KERNELS} ${arg_SSE41})
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
  target_compile_definitions(${target} PRIVATE QUELIDE_BUILDING)
  target_link_libraries(${target} PUBLIC quelide_policy)
  set_property(GLOBAL APPEND PROPERTY QUELIDE_INCLUDE_DIRECTORIES ${CMAKE_CURRENT_SOURCE_DIR}/include)
  target_include_directories(quelide_policy INTERFACE ${CMAKE_CURRENT_SOURCE_DIR}/include)
  target_link_libraries(quelide_objects INTERFACE $<TARGET_OBJECTS:${target}>)
  set_property(GLOBAL APPEND PROPERTY QUELIDE_OBJECT_TARGETS ${target})

  if(arg_KERNELS)
    set_source_files_properties(${arg_KERNELS} PROPERTIES COMPILE_OPTIONS "-O3")
  endif()
  if(arg_SSE41)
    set_source_files_properties(${arg_SSE41} PROPERTIES COMPILE_OPTIONS "-O3;-msse4.1")
  endif()

  if(QUELIDE_TESTS AND arg_TESTS)
    add_executable(test_${name} ${arg_TESTS})
    set_target_properties(test_${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_definitions(test_${name} PRIVATE QUELIDE_BUILDING QUELIDE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(test_${name} PRIVATE quelide_objects GTest::gmock GTest::gtest_main)
    include(GoogleTest)
    gtest_discover_tests(test_${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS unit TIMEOUT 600)
  endif()
endfunction()
