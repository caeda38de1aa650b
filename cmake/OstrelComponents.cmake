# Optional package components. Each is a library target installed with an export set of its own
# (ostrel-<name>-targets.cmake) and a file that finds what it depends on
# (ostrel-<name>-dependencies.cmake); find_package(ostrel COMPONENTS <name>) loads both, and gives
# ostrel::<name>. A component whose toolkit is missing is not built and not installed, so
# asking for it fails in the consumer's find_package with a clear message.
#
#   ostrel_component(<name> <target> [DEPENDENCIES "find_dependency(...)" ...])
function(ostrel_component name target)
  cmake_parse_arguments(arg "" "" "DEPENDENCIES" ${ARGN})
  add_library(ostrel::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} OUTPUT_NAME ostrel-${name}
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  install(TARGETS ${target} EXPORT ostrel-${name}-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(EXPORT ostrel-${name}-targets NAMESPACE ostrel::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ostrel)
  if(arg_DEPENDENCIES)
    set(body "include(CMakeFindDependencyMacro)\n")
    foreach(line IN LISTS arg_DEPENDENCIES)
      string(APPEND body "${line}\n")
    endforeach()
    file(WRITE ${PROJECT_BINARY_DIR}/ostrel-${name}-dependencies.cmake "${body}")
    install(FILES ${PROJECT_BINARY_DIR}/ostrel-${name}-dependencies.cmake
      DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ostrel)
  endif()
  set_property(GLOBAL APPEND PROPERTY OSTREL_COMPONENTS ${name})
endfunction()

# A pkg-config file for hosts that do not use CMake: ostrel.pc, ostrel-<name>.pc.
#   ostrel_pkg_config(<file name> <description> <library> [REQUIRES <modules>] [CFLAGS <flags>])
function(ostrel_pkg_config file description library)
  cmake_parse_arguments(arg "" "REQUIRES;CFLAGS" "" ${ARGN})
  set(OSTREL_PC_CFLAGS "${arg_CFLAGS}")
  set(OSTREL_PC_DESCRIPTION "${description}")
  set(OSTREL_PC_LIBRARY "${library}")
  set(OSTREL_PC_REQUIRES "${arg_REQUIRES}")
  # The prefix is found from the file's own place, so that the installed tree can move.
  file(RELATIVE_PATH OSTREL_PC_UP "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/p")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/ostrel.pc.in ${PROJECT_BINARY_DIR}/pkgconfig/${file}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${file}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
