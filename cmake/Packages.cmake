# The packages of a release, made by cpack: .deb or .rpm, where the distribution has one, else an archive. There is one for
# the terminal, "spacemintctl", which needs no desktop, and one for the application, "spacemint", which needs the other.

set(CPACK_PACKAGE_NAME spacemint)
set(CPACK_PACKAGE_CONTACT "The Spacemint developers <maintainers@spacemint.invalid>")
set(CPACK_PACKAGE_VENDOR "The Spacemint developers")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "disk-space monitor for the desktop and the terminal")
set(description "Spacemint watches the free space, scans the home folder or the whole disk
quietly in the background, and says what grew, what is big and what is
safe to clean. Nothing is removed without being shown and confirmed.")
set(in_a_terminal "Spacemint's program for the terminal: it scans, shows what grew, what is big and
what is safe to clean, and walks through a folder on the full screen.
It needs nothing of a desktop.")
set(CPACK_COMPONENTS_ALL terminal application)
set(CPACK_COMPONENTS_GROUPING IGNORE)

# The QML modules that the program imports at run time are found by neither packager. qt6-wayland is for Wayland
# desktops without XWayland, the module of layer shell for a panel in its place there; xdg-utils opens web pages
# and files in other programs.
set(CPACK_GENERATOR TGZ)
if(SPACEMINT_DISTRIBUTION STREQUAL "debian")
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_VERSION "${PROJECT_VERSION}~${SPACEMINT_RELEASE_NAME}")
  set(CPACK_DEBIAN_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_TERMINAL_PACKAGE_NAME spacemintctl)
  set(CPACK_DEBIAN_TERMINAL_DESCRIPTION "${in_a_terminal}")
  # Before they were two, one package held all files.
  set(CPACK_DEBIAN_TERMINAL_PACKAGE_BREAKS "spacemint (<< ${CPACK_DEBIAN_PACKAGE_VERSION})")
  set(CPACK_DEBIAN_TERMINAL_PACKAGE_REPLACES "spacemint (<< ${CPACK_DEBIAN_PACKAGE_VERSION})")
  set(CPACK_DEBIAN_APPLICATION_PACKAGE_NAME spacemint)
  set(CPACK_DEBIAN_APPLICATION_DESCRIPTION "${description}")
  set(qml_packages
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript qml6-module-qtquick
    qml6-module-qtquick-window qml6-module-qtquick-templates qml6-module-qtquick-controls
    qml6-module-qtquick-layouts qml6-module-qtquick-shapes)
  list(JOIN qml_packages ", " qml_packages)
  set(CPACK_DEBIAN_APPLICATION_PACKAGE_DEPENDS "spacemintctl (= ${CPACK_DEBIAN_PACKAGE_VERSION}), ${qml_packages}")
  set(CPACK_DEBIAN_APPLICATION_PACKAGE_RECOMMENDS "qt6-wayland, xdg-utils")
  set(CPACK_DEBIAN_APPLICATION_PACKAGE_SUGGESTS "qml6-module-org-kde-layershell")
elseif(SPACEMINT_DISTRIBUTION STREQUAL "rpm")
  set(CPACK_GENERATOR RPM)
  set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
  set(CPACK_RPM_PACKAGE_RELEASE 1)
  set(CPACK_RPM_PACKAGE_RELEASE_DIST ON)
  set(CPACK_RPM_PACKAGE_LICENSE "MIT AND OFL-1.1 AND ISC")
  set(CPACK_RPM_PACKAGE_GROUP Applications/System)
  set(CPACK_RPM_COMPONENT_INSTALL ON)
  set(CPACK_RPM_TERMINAL_PACKAGE_NAME spacemintctl)
  set(CPACK_RPM_TERMINAL_PACKAGE_SUMMARY "disk-space monitor for the terminal")
  set(CPACK_RPM_TERMINAL_PACKAGE_DESCRIPTION "${in_a_terminal}")
  set(CPACK_RPM_APPLICATION_PACKAGE_NAME spacemint)
  set(CPACK_RPM_APPLICATION_PACKAGE_DESCRIPTION "${description}")
  set(CPACK_RPM_APPLICATION_PACKAGE_REQUIRES "spacemintctl = ${PROJECT_VERSION}, qt6-qtdeclarative, qt6-qtsvg")
  set(CPACK_RPM_APPLICATION_PACKAGE_RECOMMENDS "qt6-qtwayland, xdg-utils")
  set(CPACK_RPM_APPLICATION_PACKAGE_SUGGESTS "layer-shell-qt")
  # Folders of the system.
  set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
    /usr/share/applications /usr/share/metainfo /usr/share/icons /usr/share/icons/hicolor /usr/share/man
    /usr/share/man/man1 /usr/share/bash-completion /usr/share/bash-completion/completions /usr/share/zsh
    /usr/share/zsh/site-functions /usr/share/fish /usr/share/fish/vendor_completions.d /usr/lib/systemd
    /usr/lib/systemd/user)
endif()
include(CPack)
