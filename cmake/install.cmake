# The service library for other CMake projects, and what cmake --install
# delivers: the programs an engineer runs off the device (PREFIX/bin), and the
# service library as the CMake package ZoShmService, for a host build of a
# middleware's own service:
#
#   find_package(ZoShmService CONFIG REQUIRED)
#   target_link_libraries(my_service PRIVATE ZoShmService::zo_shm_service)
#
# The package holds zo_shm_service and every library of this project that it
# links, found by walking its link libraries (the host's parcel stand-in
# zo_platform among them), as static libraries in PREFIX/lib, with the headers
# of their include folders under PREFIX/include/zo_cmd_debug/, each folder at
# its place in this tree. The platform's libutils is not copied: the package
# names the library that this build found (cmake/android_libutils.cmake).
# A project that adds this repository as a subdirectory gets the same target
# name through an alias.

add_library(ZoShmService::zo_shm_service ALIAS zo_shm_service)

# The targets of this project that TARGET links, directly or not, with TARGET itself.
function(zo_linked_project_targets target out_var)
  set(found ${${out_var}})
  if(NOT TARGET ${target} OR target IN_LIST found)
    return()
  endif()
  get_target_property(imported ${target} IMPORTED)
  get_target_property(aliased ${target} ALIASED_TARGET)
  if(imported OR aliased)
    return()
  endif()
  list(APPEND found ${target})
  get_target_property(type ${target} TYPE)
  set(deps "")
  if(NOT type STREQUAL "INTERFACE_LIBRARY")
    get_target_property(deps ${target} LINK_LIBRARIES)
  endif()
  get_target_property(interface_deps ${target} INTERFACE_LINK_LIBRARIES)
  foreach(dep IN LISTS deps interface_deps)
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" dep "${dep}")
    if(dep)
      zo_linked_project_targets(${dep} found)
    endif()
  endforeach()
  set(${out_var} ${found} PARENT_SCOPE)
endfunction()

set(ZO_PACKAGE_TARGETS "")
zo_linked_project_targets(zo_shm_service ZO_PACKAGE_TARGETS)

# A library's include folders are folders of this tree while it builds and
# their copies under the prefix once installed; the header folders to copy are
# collected on the way. A sanitizer build's libraries need the sanitizers'
# run-time in whatever links them.
set(ZO_PACKAGE_HEADER_DIRS "")
foreach(target IN LISTS ZO_PACKAGE_TARGETS)
  get_target_property(dirs ${target} INTERFACE_INCLUDE_DIRECTORIES)
  set(both "")
  foreach(dir IN LISTS dirs)
    file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR} "${dir}")
    if(dir MATCHES "^\\$<" OR NOT IS_ABSOLUTE "${dir}" OR rel MATCHES "^\\.\\.")
      list(APPEND both "${dir}")
    else()
      list(APPEND both "$<BUILD_INTERFACE:${dir}>" "$<INSTALL_INTERFACE:include/zo_cmd_debug/${rel}>")
      list(APPEND ZO_PACKAGE_HEADER_DIRS ${rel})
    endif()
  endforeach()
  if(dirs)
    set_property(TARGET ${target} PROPERTY INTERFACE_INCLUDE_DIRECTORIES "${both}")
  endif()
  if(ZO_SANITIZE)
    set_property(TARGET ${target} APPEND PROPERTY INTERFACE_LINK_OPTIONS ${ZO_SANITIZE_FLAGS})
  endif()
endforeach()
list(REMOVE_DUPLICATES ZO_PACKAGE_HEADER_DIRS)

if(NOT ZO_INSTALL)
  return()
endif()

foreach(program zo_cmd_debug_host zo_conf_check zo_service_sim)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION bin)
  endif()
endforeach()

install(TARGETS ${ZO_PACKAGE_TARGETS} EXPORT ZoShmServiceTargets ARCHIVE DESTINATION lib)
# Each packaged folder holds only packaged code (the console's half of the
# page lives in console/), so its headers go whole.
foreach(rel IN LISTS ZO_PACKAGE_HEADER_DIRS)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${rel}/ DESTINATION include/zo_cmd_debug/${rel} FILES_MATCHING PATTERN "*.h")
endforeach()
set(ZO_PACKAGE_DIR lib/cmake/ZoShmService)
install(EXPORT ZoShmServiceTargets NAMESPACE ZoShmService:: DESTINATION ${ZO_PACKAGE_DIR})
configure_file(${PROJECT_SOURCE_DIR}/cmake/ZoShmServiceConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/ZoShmServiceConfig.cmake @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/ZoShmServiceConfig.cmake DESTINATION ${ZO_PACKAGE_DIR})
