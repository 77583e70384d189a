# The files that `cmake --install` installs, and the Debian package that CPack makes of them.

include(GNUInstallDirs)
# CMake's default folder for documents has the project's name with a capital letter.
set(docs ${CMAKE_INSTALL_DATADIR}/doc/quillmap)

set(programs quillmap quillmap-tool)
install(TARGETS ${programs})
if(WIN32)
  return()  # The rest is for desktops that read what stands below share/.
endif()

# The desktop: the menu entry, the metadata for software centres, and the icons.
install(FILES packaging/quillmap.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/org.quillmap.quillmap.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES Resources/svg/quillmap.svg DESTINATION ${icons}/scalable/apps)
foreach(size 16 24 32 48 64 128 256)
  install(FILES Resources/png/quillmap-${size}.png
    DESTINATION ${icons}/${size}x${size}/apps RENAME quillmap.png)
endforeach()

install(FILES docs/formats.md DESTINATION ${docs})
install(PROGRAMS examples/readers/area_map.py DESTINATION ${docs}/examples/readers)
# Leaves out the files that a run of the example writes into its folder.
install(DIRECTORY examples/highlands DESTINATION ${docs}/examples
  PATTERN Output EXCLUDE PATTERN territoryTypes EXCLUDE PATTERN map EXCLUDE)

# Compressed without the file's name and time, so that equal sources give equal packages.
find_program(QUILLMAP_GZIP gzip REQUIRED)
function(quillmap_install_compressed source destination name)
  set(compressed ${PROJECT_BINARY_DIR}/compressed/${name}.gz)
  add_custom_command(OUTPUT ${compressed}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/compressed
    COMMAND ${QUILLMAP_GZIP} -9nc ${PROJECT_SOURCE_DIR}/${source} > ${compressed}
    DEPENDS ${PROJECT_SOURCE_DIR}/${source}
    VERBATIM)
  add_custom_target(compress_${name} ALL DEPENDS ${compressed})
  install(FILES ${compressed} DESTINATION ${destination} ${ARGN})
endfunction()

foreach(program IN LISTS programs)
  quillmap_install_compressed(packaging/man/${program}.1 ${CMAKE_INSTALL_MANDIR}/man1 ${program}.1)
  install(FILES packaging/completions/${program}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endforeach()
quillmap_install_compressed(CHANGELOG.md ${docs} changelog)

# Files that only a Debian package contains.
set(debian COMPONENT debian EXCLUDE_FROM_ALL)
quillmap_install_compressed(
  packaging/debian/changelog ${docs} changelog.Debian ${debian})
install(FILES packaging/debian/copyright DESTINATION ${docs} ${debian})
install(FILES packaging/debian/lintian-overrides
  DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME quillmap ${debian})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillmap)
set(CPACK_PACKAGE_VENDOR "The Quillmap maintainers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the zoning data of a game world")
set(CPACK_PACKAGE_DESCRIPTION
"Quillmap edits the zoning data of a game world's economy: which area flags
(usages such as forest or village, values such as rich or poor) each place of a
square world map carries, and where groups of creatures live, as circular zones
grouped into territories.

It is made for the designers of such a world, who paint and place, and for the
build pipelines that turn their project into the files that the game's server
reads.")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Quillmap maintainers <maintainers@quillmap.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The dependencies are the libraries that the programs link. Qt's packages contain the plugins that
# are loaded at run time: platforms, JPEG.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Without any font, texts are shown as boxes.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-core)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS python3)
# All components go into one package.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENTS_ALL Unspecified debian)
include(CPack)
