# libquelide.so from the objects of all modules.
add_library(quelide SHARED)
add_library(Quelide::quelide ALIAS quelide)
get_property(modules GLOBAL PROPERTY QUELIDE_OBJECT_TARGETS)
foreach(module IN LISTS modules)
  target_sources(quelide PRIVATE $<TARGET_OBJECTS:${module}>)
endforeach()
set_target_properties(quelide PROPERTIES
  LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_link_libraries(quelide PRIVATE
  Threads::Threads Boost::filesystem Boost::iostreams PkgConfig::CPUID PUBLIC TBB::tbb)
if(QUELIDE_SCALABLE_ALLOCATOR)
  # The proxy is found by the loader alone: no symbol of it is named, so the linker must be told to keep it.
  target_link_libraries(quelide PRIVATE TBB::tbbmalloc TBB::tbbmalloc_proxy)
  target_link_options(quelide PRIVATE LINKER:--no-as-needed)
endif()
target_compile_features(quelide INTERFACE cxx_std_17)
get_property(includes GLOBAL PROPERTY QUELIDE_INCLUDE_DIRECTORIES)
foreach(directory IN LISTS includes)
  target_include_directories(quelide INTERFACE $<BUILD_INTERFACE:${directory}>)
endforeach()
target_include_directories(quelide INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
