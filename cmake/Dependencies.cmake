# Third-party libraries, all from Debian 12 packages (scripts/install-deps.sh): the libraries' own
# (shared with find_package(zentrova)), then what only the tools, tests and benchmarks need.
include(${CMAKE_CURRENT_LIST_DIR}/zentrovaDependencies.cmake)

# zvpush serve and the test servers: Debian's cpp-httplib is a compiled library; its compile
# definitions come from pkg-config.
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
if(ZV_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(ZV_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
