# cmake --install: the public headers (include/zentrova and the generated Version.h), the two libraries, both programs, a CMake package
# (find_package(zentrova 0.2) gives zentrova::service and zentrova::content) and a pkg-config file
# per library. The build tree exports the same package, for a host built against it.
include(CMakePackageConfigHelpers)
set(zv_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zentrova)
# Whatever names no component is the library's development files (the libzentrova-dev package of
# cmake/Packaging.cmake); the command-line tool's files are the component "zvpush", below.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME dev)

# Only the public headers: everything under src/ stays inside.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zentrova/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zentrova
        FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/generated/zentrova/Version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zentrova)
install(TARGETS zv_service zv_content EXPORT zentrovaTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT zentrovaTargets NAMESPACE zentrova:: DESTINATION ${zv_cmake_dir})

configure_package_config_file(cmake/zentrovaConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/zentrovaConfig.cmake
                              INSTALL_DESTINATION ${zv_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zentrovaConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zentrovaConfig.cmake
              ${PROJECT_BINARY_DIR}/zentrovaConfigVersion.cmake
              ${PROJECT_SOURCE_DIR}/cmake/zentrovaDependencies.cmake DESTINATION ${zv_cmake_dir})

# The build tree as a package: zentrova_DIR=<build folder>. Only there, zentrova::internal (both
# sides with their internal headers) is found too, for programs that test the internals.
export(EXPORT zentrovaTargets NAMESPACE zentrova:: FILE ${PROJECT_BINARY_DIR}/zentrovaTargets.cmake)
export(TARGETS zv_internal zv_content_internal zv_service_internal NAMESPACE zentrova::
       FILE ${PROJECT_BINARY_DIR}/zentrovaInternalTargets.cmake)
configure_file(${PROJECT_SOURCE_DIR}/cmake/zentrovaDependencies.cmake
               ${PROJECT_BINARY_DIR}/zentrovaDependencies.cmake COPYONLY)

# The prefix is found from the .pc file's own place, so an installed tree can be moved.
file(RELATIVE_PATH ZV_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" ZV_PC_TO_PREFIX "${ZV_PC_TO_PREFIX}")
foreach(lib IN ITEMS service content)
  configure_file(cmake/zentrova-${lib}.pc.in ${PROJECT_BINARY_DIR}/zentrova-${lib}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/zentrova-${lib}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# ---- The command-line tool (component zvpush) ----------------------------------------------------
# Both programs; the examples in <prefix>/share/zentrova/examples, where zvpush finds them from any
# folder (the host example goes with the library's development files); the completions and manual
# pages made at build time from zvpush's command table.
install(TARGETS zvpush zvpush-content RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT zvpush)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/zentrova/examples
        COMPONENT zvpush PATTERN host EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/host
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zentrova/examples COMPONENT dev)
install(DIRECTORY ${PROJECT_BINARY_DIR}/share/bash-completion ${PROJECT_BINARY_DIR}/share/zsh
                  ${PROJECT_BINARY_DIR}/share/fish DESTINATION ${CMAKE_INSTALL_DATADIR}
        COMPONENT zvpush)
install(DIRECTORY ${PROJECT_BINARY_DIR}/share/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}
        COMPONENT zvpush)
