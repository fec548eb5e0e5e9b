# The libraries zentrova's two libraries link, all from Debian 12 packages. The project's build and
# find_package(zentrova) in a host project both include this file, so a consumer gets every
# dependency found the same way (the second through find_dependency).
include(CMakeFindDependencyMacro)

macro(zv_find_package)
  if(zentrova_FIND_FOR_CONSUMER)
    find_dependency(${ARGV})
  else()
    find_package(${ARGV} REQUIRED)
  endif()
endmacro()

zv_find_package(Threads)
# Debian's default Boost is 1.74; Boost.JSON and Boost.URL come from the 1.81 packages.
zv_find_package(Boost 1.81.0 EXACT CONFIG COMPONENTS json url)
zv_find_package(OpenSSL)
zv_find_package(fmt)
zv_find_package(CURL)
zv_find_package(SQLite3)
zv_find_package(PkgConfig)

pkg_check_modules(ZV_GUMBO REQUIRED IMPORTED_TARGET gumbo)
pkg_check_modules(ZV_MAGIC REQUIRED IMPORTED_TARGET libmagic)
# The content library.
pkg_check_modules(ZV_PANGO REQUIRED IMPORTED_TARGET pangocairo pangoft2 fontconfig cairo)
pkg_check_modules(ZV_IMAGES REQUIRED IMPORTED_TARGET libpng libjpeg libwebp libwebpdemux
                  libwebpmux lcms2 libexif)
if(NOT zentrova_FIND_FOR_CONSUMER)
  # Headers only: the content library loads FFmpeg's libraries when it first plays a clip.
  pkg_check_modules(ZV_FFMPEG REQUIRED libavformat libavcodec libavutil libswscale)
endif()
# giflib ships no pkg-config file.
if(NOT TARGET zentrova_giflib)
  find_path(ZV_GIF_INCLUDE_DIR gif_lib.h REQUIRED)
  find_library(ZV_GIF_LIBRARY gif REQUIRED)
  add_library(zentrova_giflib INTERFACE IMPORTED)
  set_target_properties(zentrova_giflib PROPERTIES INTERFACE_INCLUDE_DIRECTORIES
                                                   "${ZV_GIF_INCLUDE_DIR}"
                                                   INTERFACE_LINK_LIBRARIES "${ZV_GIF_LIBRARY}")
endif()
