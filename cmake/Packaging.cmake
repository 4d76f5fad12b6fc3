# Where an installation puts each file (the same rules serve "cmake --install"
# and the Debian package), and the package itself: cpack -G DEB.

set(SB_DATADIR ${CMAKE_INSTALL_DATADIR}/servicebay)
set(SB_FULL_DATADIR ${CMAKE_INSTALL_FULL_DATADIR}/servicebay)
set(SB_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/servicebay)
configure_file(${PROJECT_SOURCE_DIR}/cmake/InstalledFiles.h.in ${CMAKE_BINARY_DIR}/generated/InstalledFiles.h @ONLY)

set(SB_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)

# The sample profile names its catalog relative to its own folder, so the two
# stay side by side.
install(FILES data/SampleCatalog.xml data/SampleModule.profile DESTINATION ${SB_DATADIR})
install(FILES ${SB_PACKAGING}/70-servicebay.rules DESTINATION lib/udev/rules.d)
install(FILES ${SB_PACKAGING}/servicebay.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
# The type of our configuration files; shared-mime-info's dpkg trigger on
# this folder runs update-mime-database, desktop-file-utils' the desktop
# database for the entry's MimeType.
install(FILES ${SB_PACKAGING}/servicebay-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME servicebay.xml)
install(FILES ${SB_PACKAGING}/servicebay.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
configure_file(${SB_PACKAGING}/servicebay.metainfo.xml.in ${CMAKE_BINARY_DIR}/org.example.servicebay.metainfo.xml @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/org.example.servicebay.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${SB_PACKAGING}/servicebay-cli.bash-completion
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME servicebay-cli)
install(FILES ${SB_PACKAGING}/copyright DESTINATION ${SB_DOCDIR})

# Manual pages and the changelog go compressed, without name and time in the
# gzip header, so that two builds give the same bytes.
function(sb_gzip_for_install source output destination)
  set(target ${CMAKE_BINARY_DIR}/gz/${output})
  add_custom_command(OUTPUT ${target}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/gz
    COMMAND gzip -9n -c ${source} > ${target}
    DEPENDS ${source}
    VERBATIM)
  list(APPEND SB_GZIPPED ${target})
  set(SB_GZIPPED ${SB_GZIPPED} PARENT_SCOPE)
  install(FILES ${target} DESTINATION ${destination})
endfunction()

foreach(page servicebay servicebay-cli servicebay-module)
  sb_gzip_for_install(${SB_PACKAGING}/${page}.1 ${page}.1.gz ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
configure_file(${SB_PACKAGING}/changelog.in ${CMAKE_BINARY_DIR}/changelog @ONLY)
sb_gzip_for_install(${CMAKE_BINARY_DIR}/changelog changelog.Debian.gz ${SB_DOCDIR})
add_custom_target(sb_gzipped ALL DEPENDS ${SB_GZIPPED})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME servicebay)
set(CPACK_PACKAGE_VENDOR "ServiceBay developers")
set(CPACK_PACKAGE_CONTACT "ServiceBay developers <servicebay@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "service tool for a vehicle electronics module on a serial port")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "ServiceBay reads what the module reports about itself, edits its configuration\n"
    "through the option tree of the catalog the module delivers, writes the\n"
    "configuration back, downloads firmware by XMODEM-1K and keeps a counted\n"
    "production record.\n"
    "\n"
    "The package holds the window program servicebay, the command-line tool\n"
    "servicebay-cli for scripts and production lines, and servicebay-module, a\n"
    "virtual module on a pseudo-terminal for trying both without hardware. Its\n"
    "udev rule gives the user at the seat access to the module's port.")
string(REPLACE ";" "" CPACK_DEBIAN_PACKAGE_DESCRIPTION "${CPACK_DEBIAN_PACKAGE_DESCRIPTION}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries come from the binaries; Qt's platform plugins (the window's
# xcb and wayland, the offscreen one) are loaded at run time and named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${SB_PACKAGING}/postinst ${SB_PACKAGING}/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
