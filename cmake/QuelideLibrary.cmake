# libquelide.so from the objects of all modules, and what installs it.
get_property(modules GLOBAL PROPERTY QUELIDE_OBJECT_TARGETS)
get_property(includes GLOBAL PROPERTY QUELIDE_INCLUDE_DIRECTORIES)
if(NOT modules)
  message(FATAL_ERROR "No module has a unit.")
endif()

add_library(quelide SHARED)
add_library(Quelide::quelide ALIAS quelide)
foreach(module IN LISTS modules)
  target_sources(quelide PRIVATE $<TARGET_OBJECTS:${module}>)
endforeach()
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  # What no unit defines is an error here, not in the host that loads the library.
  target_link_options(quelide PRIVATE LINKER:--no-undefined)
endif()
set_target_properties(quelide PROPERTIES
  LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
  INSTALL_RPATH "" LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/quelide.map)
target_link_options(quelide PRIVATE LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/quelide.map)
if(NOT QUELIDE_SANITIZE)
  target_link_options(quelide PRIVATE LINKER:-z,defs) # what a host could not resolve fails here; sanitizers leave names open
endif()
target_link_libraries(quelide PRIVATE
  Threads::Threads Boost::filesystem Boost::iostreams PkgConfig::CPUID PUBLIC TBB::tbb)
if(QUELIDE_SCALABLE_ALLOCATOR)
  # The proxy is found by the loader alone: no symbol of it is named, so the linker must be told to keep it.
  target_link_libraries(quelide PRIVATE TBB::tbbmalloc TBB::tbbmalloc_proxy)
  target_link_options(quelide PRIVATE LINKER:--no-as-needed)
endif()
target_compile_features(quelide INTERFACE cxx_std_17)
foreach(directory IN LISTS includes)
  target_include_directories(quelide INTERFACE $<BUILD_INTERFACE:${directory}>)
endforeach()
target_include_directories(quelide INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# <qel/quelide.h>: all public headers. Made here, so that no module has to name its headers a second time.
set(all_headers "#pragma once\n\n/// @file\n/// All public headers of the library.\n\n")
foreach(directory IN LISTS includes)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${directory} ${directory}/*.h)
  list(SORT headers)
  foreach(header IN LISTS headers)
    string(APPEND all_headers "#include <${header}>\n")
  endforeach()
endforeach()
set(generated ${PROJECT_BINARY_DIR}/include)
file(CONFIGURE OUTPUT ${generated}/qel/quelide.h CONTENT "${all_headers}" @ONLY)
target_include_directories(quelide INTERFACE $<BUILD_INTERFACE:${generated}>)
install(FILES ${generated}/qel/quelide.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qel)

# Installation: relocatable, so that a package can be moved or staged.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Quelide)
install(TARGETS quelide EXPORT QuelideTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(directory IN LISTS includes)
  install(DIRECTORY ${directory}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
endforeach()
install(EXPORT QuelideTargets NAMESPACE Quelide:: DESTINATION ${package_folder})
configure_package_config_file(cmake/QuelideConfig.cmake.in QuelideConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(QuelideConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QuelideConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/QuelideConfigVersion.cmake
  DESTINATION ${package_folder})

file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/quelide.pc.in quelide.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/quelide.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
