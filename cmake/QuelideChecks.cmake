# Checks of the project as a whole: its files, what the library exports, what an installed tree gives to an outside host.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(checks ${PROJECT_SOURCE_DIR}/cmake/checks)

function(qel_check name)
  add_test(NAME check_${name} COMMAND Python3::Interpreter -B ${checks}/${name}.py ${ARGN})
  set_tests_properties(check_${name} PROPERTIES LABELS unit TIMEOUT 900) # a busy machine is no reason to fail
endfunction()

qel_check(sources_listed)
qel_check(machine_paths)
qel_check(layers)
qel_check(readme_commands $<$<TARGET_EXISTS:quelide-host>:$<TARGET_FILE:quelide-host>>)
find_program(QUELIDE_CLANG_FORMAT NAMES clang-format-14 clang-format)
if(QUELIDE_CLANG_FORMAT)
  qel_check(formatted ${QUELIDE_CLANG_FORMAT})
endif()
add_test(NAME check_docs COMMAND ${PROJECT_SOURCE_DIR}/dev docs)
set_tests_properties(check_docs PROPERTIES LABELS unit TIMEOUT 300)

get_property(includes GLOBAL PROPERTY QUELIDE_INCLUDE_DIRECTORIES)
qel_check(public_headers ${includes} ${PROJECT_BINARY_DIR}/include -- ${CMAKE_CXX_COMPILER_LAUNCHER} ${CMAKE_CXX_COMPILER})

# What a sanitizer adds is no export of ours, and its run-time library no part of a package.
if(NOT QUELIDE_SANITIZE)
  qel_check(exported_symbols ${CMAKE_NM} $<TARGET_FILE:quelide>)
  get_property(objects GLOBAL PROPERTY QUELIDE_LEVEL_OBJECTS)
  if(CMAKE_BUILD_TYPE STREQUAL Release AND objects)
    qel_check(level_leaks ${CMAKE_NM} ${objects})
  endif()

  set(package_test ${PROJECT_SOURCE_DIR}/cmake/package-test/run.sh)
  set(tree ${CMAKE_CURRENT_BINARY_DIR}/installed)
  add_test(NAME package_install COMMAND ${package_test} install ${tree} ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(package_install PROPERTIES LABELS host FIXTURES_SETUP installed)
  foreach(way IN ITEMS cmake pkg-config)
    add_test(NAME package_${way} COMMAND ${package_test}
      ${way} ${tree} ${CMAKE_INSTALL_LIBDIR} ${CMAKE_CURRENT_BINARY_DIR}/package-test-${way} ${CMAKE_CXX_COMPILER})
    set_tests_properties(package_${way} PROPERTIES LABELS host FIXTURES_REQUIRED installed TIMEOUT 300)
  endforeach()
  if(CMAKE_BUILD_TYPE STREQUAL Release)
    qel_check(library_paths ${tree} ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
    set_tests_properties(check_library_paths PROPERTIES FIXTURES_REQUIRED installed)
  endif()
endif()
