# What `cpack -G DEB` makes a package of: all that is installed, as Debian wants it.
set(CPACK_PACKAGE_NAME chanplan-editor)
set(CPACK_PACKAGE_VENDOR "Chanplan Editor developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the channel plans of handheld RF test units")
set(CPACK_PACKAGE_DESCRIPTION
"Handheld RF test units tune themselves by a table of Signal Standards, named
band plans with their sub-bands. This package has the editor for such tables,
chanplan-editor, the console program chanplan with the same functions for
scripts, and handheld-simulator, a simulated unit to try both with.
.
Tables are edited, checked, compared, printed, drawn along the spectrum, and
moved to and from a unit on a serial port.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/compress.cmake)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Chanplan Editor developers <chanplan-editor@example.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation, xdg-utils")  # letters as wide as Arial's; shows reports
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, cups")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

if(UNIX AND NOT APPLE)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/chanplan-editor)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/changelog DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/chanplan-editor)
endif()
include(CPack)
