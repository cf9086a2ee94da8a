# The desktop's entries and the Debian package: cpack -G DEB in the build folder.
if(QUILLON_DESKTOP)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/example.quillon.Quillon.desktop
          DESTINATION share/applications COMPONENT desktop)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/example.quillon.Quillon.metainfo.xml
          DESTINATION share/metainfo COMPONENT desktop)
endif()

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
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(QUILLON_DESKTOP)
  # Opens addresses in the browser, and makes keys.
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, openssl")
  if(QUILLON_QT EQUAL 5)
    # Four of the styles that the look-and-feel settings offer.
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt5-style-plugins")
  endif()
endif()

include(CPack)
