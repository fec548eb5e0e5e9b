# The API reference (`docs` target): Doxygen over the public headers, warnings as errors, so an
# undocumented public name fails the build. Only when Doxygen is found; no Graphviz needed. The
# HTML is installed with the development files when it was built: an install without it still works.
find_package(Doxygen 1.9 QUIET)
if(NOT DOXYGEN_FOUND)
  message(STATUS "Doxygen not found: no docs target")
  return()
endif()

set(ZV_DOCS_OUTPUT ${PROJECT_BINARY_DIR}/docs)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
file(GLOB zv_public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/zentrova/*.h)
add_custom_command(
  OUTPUT ${ZV_DOCS_OUTPUT}/html/index.html
  COMMAND ${CMAKE_COMMAND} -E make_directory ${ZV_DOCS_OUTPUT}
  COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile
  DEPENDS ${PROJECT_BINARY_DIR}/Doxyfile ${zv_public_headers}
          ${PROJECT_BINARY_DIR}/generated/zentrova/Version.h
  WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
  COMMENT "API reference (Doxygen, warnings are errors)"
  VERBATIM)
add_custom_target(docs DEPENDS ${ZV_DOCS_OUTPUT}/html/index.html)

install(DIRECTORY ${ZV_DOCS_OUTPUT}/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/api OPTIONAL)
