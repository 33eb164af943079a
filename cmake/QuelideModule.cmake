# All build policy, in one place.
#
# qel_module(Name SOURCES ... KERNELS ... SSE41 ... AVX2 ... TESTS ... SLOW_TESTS ...)
#
# One folder, one object library. Each unit is compiled once and serves the shared library and the tests alike: so tests
# see hidden classes, and no linker drops a unit that only registers itself.
#   SOURCES     plain units
#   KERNELS     units whose loops the compiler shall vectorise (-O3)
#   SSE41       units of row kernels for SSE 4.1, and nothing else: see ARCHITECTURE.md on levels
#   AVX2        the same for AVX2: wider packets behind the runners of SSE 4.1
#   TESTS       GoogleTest units, linked into one executable test_<Name>, label `unit`
#   SLOW_TESTS  the same in test_<Name>_slow, label `slow`
#
# qel_test(name LABEL label SOURCES ... [LINK ...])
#
# One GoogleTest executable over all object files. CTest starts it once for each ten files (GoogleTest's own sharding), not
# once for each test: a start loads the whole library. Each shard runs in a folder of its own, which is its TMPDIR too.

add_library(quelide_policy INTERFACE)
target_compile_features(quelide_policy INTERFACE cxx_std_20)
target_compile_options(quelide_policy INTERFACE
  -fno-semantic-interposition
  -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual
  # The same bits everywhere: no fused multiply-add, whatever processor a unit is compiled for.
  -ffp-contract=off
  # Recorded paths are those of the project, not of the machine.
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
  # Overrides the -O3 of CMake's Release: half the code, and kernels ask for -O3 themselves.
  $<$<CONFIG:Release>:-O2>)
if(QUELIDE_WERROR)
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()
target_include_directories(quelide_policy INTERFACE ${PROJECT_SOURCE_DIR})
target_link_libraries(quelide_policy INTERFACE
  Threads::Threads Boost::headers Boost::filesystem Boost::iostreams TBB::tbb Eigen3::Eigen xsimd PkgConfig::CPUID)

# What each test links: the objects of all modules.
add_library(quelide_objects INTERFACE)
target_link_libraries(quelide_objects INTERFACE quelide_policy)

if(QUELIDE_SANITIZE)
  string(REPLACE ";" "," sanitizers "${QUELIDE_SANITIZE}")
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${sanitizers})
endif()

function(qel_module name)
  cmake_parse_arguments(arg "" "" "SOURCES;KERNELS;SSE41;AVX2;TESTS;SLOW_TESTS" ${ARGN})
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "qel_module(${name}): unknown ${arg_UNPARSED_ARGUMENTS}")
  endif()
  set(target qel_${name})
  set_property(GLOBAL APPEND PROPERTY QUELIDE_INCLUDE_DIRECTORIES ${CMAKE_CURRENT_SOURCE_DIR}/include)
  target_include_directories(quelide_policy INTERFACE ${CMAKE_CURRENT_SOURCE_DIR}/include)

  set(units ${arg_SOURCES} ${arg_KERNELS} ${arg_SSE41} ${arg_AVX2})
  if(units)
    add_library(${target} OBJECT ${units})
    set_target_properties(${target} PROPERTIES
      CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
    target_compile_definitions(${target} PRIVATE QUELIDE_BUILDING)
    target_link_libraries(${target} PUBLIC quelide_policy)
    target_link_libraries(quelide_objects INTERFACE $<TARGET_OBJECTS:${target}>)
    set_property(GLOBAL APPEND PROPERTY QUELIDE_OBJECT_TARGETS ${target})
  endif()
  if(arg_KERNELS)
    set_source_files_properties(${arg_KERNELS} PROPERTIES COMPILE_OPTIONS "$<$<NOT:$<CONFIG:Debug>>:-O3>")
  endif()
  foreach(level SSE41 AVX2)
    set(flag_of_SSE41 -msse4.1)
    set(flag_of_AVX2 -mavx2)
    foreach(unit IN LISTS arg_${level})
      set_source_files_properties(${unit} PROPERTIES
        COMPILE_OPTIONS "$<$<NOT:$<CONFIG:Debug>>:-O3>;${flag_of_${level}}")
      # Where Ninja and Make put the object of a unit.
      set_property(GLOBAL APPEND PROPERTY QUELIDE_LEVEL_OBJECTS
        ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${target}.dir/${unit}.o)
    endforeach()
  endforeach()

  if(arg_TESTS)
    qel_test(test_${name} LABEL unit SOURCES ${arg_TESTS})
  endif()
  if(arg_SLOW_TESTS)
    qel_test(test_${name}_slow LABEL slow SOURCES ${arg_SLOW_TESTS})
  endif()
endfunction()

function(qel_test name)
  if(NOT QUELIDE_TESTS)
    return()
  endif()
  cmake_parse_arguments(arg "" "LABEL" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_definitions(${name} PRIVATE QUELIDE_BUILDING QUELIDE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE quelide_objects GTest::gmock GTest::gtest_main ${arg_LINK})

  set(timeout 900)
  if(QUELIDE_SANITIZE)
    set(timeout 3600) # ten times slower, and the machine may be busy
  endif()
  list(LENGTH arg_SOURCES files)
  math(EXPR shards "(${files} + 9) / 10")
  math(EXPR last "${shards} - 1")
  foreach(shard RANGE ${last})
    set(test ${name})
    if(shards GREATER 1)
      set(test ${name}.${shard})
    endif()
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${test}.run)
    file(MAKE_DIRECTORY ${folder})
    add_test(NAME ${test} COMMAND ${name} --gtest_brief=1 WORKING_DIRECTORY ${folder})
    set_tests_properties(${test} PROPERTIES LABELS ${arg_LABEL} TIMEOUT ${timeout}
      FAIL_REGULAR_EXPRESSION "\\[==========\\] 0 tests"
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${shard};TMPDIR=${folder};TEST_TMPDIR=${folder}/")
  endforeach()
endfunction()
