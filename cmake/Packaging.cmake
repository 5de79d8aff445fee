# Installing, and the Debian package.
#
#   <prefix>/bin/wayfold-browser                    the bundled browser
#   <prefix>/lib/wayfold/Wayfold.plugin/Contents/   the plug-in, with its resources beside it
#   <prefix>/share/...                              menu entry, icon, manual

include(GNUInstallDirs)

install(DIRECTORY ${WAYFOLD_BUNDLE}/ DESTINATION lib/wayfold/Wayfold.plugin USE_SOURCE_PERMISSIONS)
install(FILES resources/images/wayfold.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES README.md docs/manual.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(WAYFOLD_BROWSER)
    install(TARGETS wayfold-browser RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES resources/wayfold-browser.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME wayfold)
set(CPACK_PACKAGE_VENDOR "Wayfold")
set(CPACK_PACKAGE_CONTACT "Wayfold maintainers <maintainers@wayfold.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "drawer beside every browser window that follows the site")
set(CPACK_PACKAGE_DESCRIPTION "Wayfold keeps links, notes, files, mails and people per web site in a drawer
beside the browser window. People are those of the desktop's contacts, or of a
folder of cards. It comes with a small browser of its own.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so the search for linked libraries does not see them: image formats, texts, and whom https trusts.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, qt6-translations-l10n, ca-certificates")
# The desktop's contacts; without them there are folders of cards.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "evolution-data-server")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
include(CPack)
