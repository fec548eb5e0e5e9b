# cpack -G DEB, in a build folder: two Debian packages made from the install components.
#  - zvpush: both programs, the examples they find in /usr/share/zentrova, the shell completions
#    and manual pages;
#  - libzentrova-dev: the public headers, the libraries, the CMake package and the pkg-config files,
#    and the host example.
# Versions follow the project's; the shared libraries the programs link are found by dpkg-shlibdeps
# (package dpkg-dev). What the binaries do not show is named here: FFmpeg's libraries, loaded when
# the first clip plays, the Inter font the pictures are drawn in, and the development packages that
# find_package(zentrova) and pkg-config look for.
set(CPACK_PACKAGE_NAME zentrova)
set(CPACK_PACKAGE_VENDOR "Zentrova")
set(CPACK_PACKAGE_CONTACT "Zentrova maintainers <maintainers@zentrova.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Zentrova rich notifications")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL zvpush dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_ZVPUSH_PACKAGE_NAME zvpush)
set(CPACK_DEBIAN_ZVPUSH_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_ZVPUSH_DESCRIPTION
    "run the Zentrova rich-notification extensions on this machine\n"
    "zvpush runs the notification-service and content extensions on payloads, previews\n"
    "notifications as pictures, and serves a local preview page (zvpush studio).")
set(zv_ffmpeg_packages)
foreach(lib IN ITEMS libavformat libavcodec libavutil libswscale)
  string(REGEX MATCH "^[0-9]+" major "${ZV_FFMPEG_${lib}_VERSION}")
  list(APPEND zv_ffmpeg_packages ${lib}${major})
endforeach()
list(JOIN zv_ffmpeg_packages ", " zv_ffmpeg_packages)
set(CPACK_DEBIAN_ZVPUSH_PACKAGE_DEPENDS "${zv_ffmpeg_packages}, fonts-inter, fontconfig")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libzentrova-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "Zentrova rich notifications: development files\n"
    "The headers and libraries of both notification extensions (zentrova::service,\n"
    "zentrova::content), with a CMake package and pkg-config files.")
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "libboost-json1.81-dev, libboost-url1.81-dev, libssl-dev, libfmt-dev, libcurl4-openssl-dev, \
libsqlite3-dev, libgumbo-dev, libmagic-dev, libpango1.0-dev, libcairo2-dev, libpng-dev, \
libjpeg62-turbo-dev | libjpeg-dev, libwebp-dev, libgif-dev, pkg-config, fonts-inter")
include(CPack)
