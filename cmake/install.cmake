# Installing like a Debian program (make install, make package): the binary; the window module in a
# directory of its own, found relative to the binary; the manual page, made from --help and --version
# by help2man so that the two never disagree; a desktop entry and its icon; the examples and documents.
include(GNUInstallDirs)

set(VEXIL_MODULE_DIRECTORY lib/vexil)
target_compile_definitions(vexil PRIVATE
  VEXIL_INSTALLED_MODULE_DIRECTORY="../${VEXIL_MODULE_DIRECTORY}")
install(TARGETS vexil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS vexil_window LIBRARY DESTINATION ${VEXIL_MODULE_DIRECTORY})

find_program(HELP2MAN help2man REQUIRED)
set(VEXIL_MANUAL ${CMAKE_BINARY_DIR}/vexil.1)
add_custom_command(OUTPUT ${VEXIL_MANUAL} ${VEXIL_MANUAL}.gz
  COMMAND ${HELP2MAN} --no-info --include ${CMAKE_SOURCE_DIR}/docs/vexil.h2m --output ${VEXIL_MANUAL} $<TARGET_FILE:vexil>
  COMMAND gzip -9 -n -f -k ${VEXIL_MANUAL}
  DEPENDS vexil ${CMAKE_SOURCE_DIR}/docs/vexil.h2m
  COMMENT "Making the manual page vexil.1 from vexil --help")
add_custom_target(vexil_manual ALL DEPENDS ${VEXIL_MANUAL})
install(FILES ${VEXIL_MANUAL}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

install(FILES data/vexil.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/vexil.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
# The README's links (docs/language.md, examples/) hold in the installed copy too.
set(VEXIL_DOC_DIRECTORY ${CMAKE_INSTALL_DATADIR}/doc/vexil)
install(FILES README.md DESTINATION ${VEXIL_DOC_DIRECTORY})
install(FILES docs/language.md docs/screenshot.png DESTINATION ${VEXIL_DOC_DIRECTORY}/docs)
install(DIRECTORY examples/ DESTINATION ${VEXIL_DOC_DIRECTORY}/examples FILES_MATCHING PATTERN "*.bas")

# make package: a .deb whose dependencies dpkg-shlibdeps reads from the binaries.
file(STRINGS ${CMAKE_SOURCE_DIR}/host/command_line.h VEXIL_VERSION_LINE REGEX "VEXIL v[0-9.]+")
string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" CPACK_PACKAGE_VERSION "${VEXIL_VERSION_LINE}")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vexil)
set(CPACK_PACKAGE_CONTACT "VEXIL developers <vexil@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "line-numbered BASIC with a full-screen console")
set(CPACK_PACKAGE_DESCRIPTION "VEXIL is an interpreter for a line-numbered BASIC with a full-screen console
in the manner of a home computer's BASIC screen, with a window (SDL2), a terminal (ncurses) and a
headless face, pixel graphics, files and example programs.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION interpreters)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
