# The Debian package: cpack -G DEB in the build folder.
set(CPACK_PACKAGE_NAME quillon)
set(CPACK_PACKAGE_VENDOR Tessaroy)
set(CPACK_PACKAGE_CONTACT "Quillon maintainers <maintainers@quillon.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "personal web and WebDAV server")
set(CPACK_PACKAGE_DESCRIPTION
    "Shares one file or folder over HTTP, HTTPS and WebDAV.
Choose what to share in the window, press Start and open the shown address in
any browser. The package also brings the console program quillon-serve.")
set(CPACK_PACKAGE_HOMEPAGE_URL https://quillon.example/)
set(CPACK_STRIP_FILES ON)

# The programs and their resources go to ${QUILLON_PREFIX}, the rest below /usr.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)

set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${CMAKE_BINARY_DIR}/packaging/debian/postinst ${CMAKE_BINARY_DIR}/packaging/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# For the key that is made at the installation, and by the window.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser, openssl")
# Has servers found in the network.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS avahi-daemon)
# Decode videos, and the pictures of telephones.
string(APPEND CPACK_DEBIAN_PACKAGE_SUGGESTS ", ffmpegthumbnailer, libheif1")
if(QUILLON_QT EQUAL 5)
  # Decode WebP, and AVIF.
  string(APPEND CPACK_DEBIAN_PACKAGE_SUGGESTS ", qt5-image-formats-plugins, kimageformat-plugins")
endif()
if(QUILLON_DESKTOP)
  # Opens addresses in the browser.
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
  # Reads the entry for the menu of the file manager.
  string(APPEND CPACK_DEBIAN_PACKAGE_SUGGESTS ", python3-nautilus")
  if(QUILLON_QT EQUAL 5)
    # Four of the styles that the look-and-feel settings offer.
    string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", qt5-style-plugins")
  endif()
endif()

include(CPack)
