# The Debian packages: the install root at /opt/Norvex/ORBClient plus the menu
# entry, AppStream data, icons and documents at their system places; the
# library's header and unversioned link in a -dev package of their own.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${NORVEX_PACKAGE_NAME})
set(CPACK_PACKAGE_VENDOR Norvex)
set(CPACK_PACKAGE_CONTACT "Norvex Support <support@norvex.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${NORVEX_PACKAGE_ROOT})
set(CPACK_STRIP_FILES ON)

# Each package's description below starts with its own summary line.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL client system dev dev-system logd)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://www.norvex.example/")

# The utility itself.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${NORVEX_PACKAGE_NAME})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "Norvex Log Collection Utility\n"
    "Gathers the logs and diagnostics of the Norvex remote-desktop client into one\n"
    "gzip tar archive for support, either as they are or from a run in which the\n"
    "client logs at the most verbose level. Also ships liblogclient, the logging\n"
    "library of the client's programs.")
string(JOIN "" CPACK_DEBIAN_RUNTIME_DESCRIPTION ${CPACK_DEBIAN_RUNTIME_DESCRIPTION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# liblogclient comes with the package; dpkg-shlibdeps must look for it there (relative to the staging root).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS .${NORVEX_PACKAGE_ROOT}/lib)
# Tools the utility runs: pgrep is the only one outside the essential set.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "procps")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "lsb-release")

# Building the client's other programs against liblogclient.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${NORVEX_PACKAGE_NAME}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "Norvex client logging library - development files\n"
    "The header and the unversioned link of liblogclient, the logging library of\n"
    "the Norvex remote-desktop client's programs, for building against it.")
string(JOIN "" CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION ${CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${NORVEX_PACKAGE_NAME} (= ${PROJECT_VERSION})")

# The log daemon, for the system-wide mode or one user's.
set(CPACK_DEBIAN_DAEMON_PACKAGE_NAME norvex-logd)
set(CPACK_DEBIAN_DAEMON_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_DAEMON_DESCRIPTION
    "Norvex client log daemon\n"
    "logd takes the records of the Norvex remote-desktop client's programs and\n"
    "writes them to the client's log file, for all users of the machine (the\n"
    "system unit) or for one user (the user unit). It writes only into the log\n"
    "folders it serves, with each user's own rights there.")
string(JOIN "" CPACK_DEBIAN_DAEMON_DESCRIPTION ${CPACK_DEBIAN_DAEMON_DESCRIPTION})
set(CPACK_DEBIAN_DAEMON_PACKAGE_SHLIBDEPS ON)

include(CPack)
cpack_add_component_group(runtime)
cpack_add_component_group(development)
cpack_add_component(client GROUP runtime)
cpack_add_component(system GROUP runtime)
cpack_add_component(dev GROUP development)
cpack_add_component(dev-system GROUP development)
cpack_add_component_group(daemon)
cpack_add_component(logd GROUP daemon)
