# Third-party libraries, all from Debian 12 packages (scripts/install-deps.sh).
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
# Debian's default Boost is 1.74; Boost.JSON and Boost.URL come from the 1.81 packages.
find_package(Boost 1.81.0 EXACT CONFIG REQUIRED COMPONENTS json url)
find_package(OpenSSL REQUIRED)
find_package(fmt REQUIRED)

pkg_check_modules(CURL REQUIRED IMPORTED_TARGET libcurl)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
pkg_check_modules(GUMBO REQUIRED IMPORTED_TARGET gumbo)
pkg_check_modules(MAGIC REQUIRED IMPORTED_TARGET libmagic)
pkg_check_modules(PANGO REQUIRED IMPORTED_TARGET pangocairo pangoft2 fontconfig cairo)
pkg_check_modules(IMAGES REQUIRED IMPORTED_TARGET libpng libjpeg libwebp libwebpdemux)
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil libswscale)
# giflib ships no pkg-config file.
find_path(GIF_INCLUDE_DIR gif_lib.h REQUIRED)
find_library(GIF_LIBRARY gif REQUIRED)
add_library(zv_giflib INTERFACE)
target_include_directories(zv_giflib INTERFACE ${GIF_INCLUDE_DIR})
target_link_libraries(zv_giflib INTERFACE ${GIF_LIBRARY})

# zvpush serve and the test servers: Debian's cpp-httplib is a compiled library; its compile
# definitions come from pkg-config.
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
if(ZV_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(ZV_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
