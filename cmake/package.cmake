# The Debian package: the install root at /opt/Norvex/ORBClient plus the menu
# entry, AppStream data, icon and copyright at their system places.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${NORVEX_PACKAGE_NAME})
set(CPACK_PACKAGE_VENDOR Norvex)
set(CPACK_PACKAGE_CONTACT "Norvex Support <support@norvex.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Norvex Log Collection Utility")
set(CPACK_PACKAGE_DESCRIPTION
    "Gathers the logs and diagnostics of the Norvex remote-desktop client into one\n"
    "gzip tar archive for support, either as they are or from a run in which the\n"
    "client logs at the most verbose level. Also ships liblogclient, the logging\n"
    "library of the client's programs.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${NORVEX_PACKAGE_ROOT})
set(CPACK_STRIP_FILES ON)

# One package that takes both components, the absolute-path one included.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENTS_ALL client desktop)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://www.norvex.example/")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# liblogclient comes with the package; dpkg-shlibdeps must look for it there (relative to the staging root).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS .${NORVEX_PACKAGE_ROOT}/lib)
# Tools the utility runs: pgrep is the only one outside the essential set.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "procps")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "lsb-release")

include(CPack)
