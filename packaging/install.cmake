# What is installed where, and the two Debian packages: `kalmira`, the logger with its windows, and `kalmira-tools`, the
# programs without a screen. Either stands alone, so both have the rule for serial adapters.
set(windows kalmira)
set(tools kalmira-log kalmira-sim kalmira-export kalmira-check)

install(TARGETS ${windows} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kalmira)
install(TARGETS ${tools} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)

set(share ${CMAKE_INSTALL_DATADIR})
set(made ${CMAKE_CURRENT_BINARY_DIR})
install(FILES org.kalmira.Kalmira.desktop DESTINATION ${share}/applications COMPONENT kalmira)
install(FILES ${made}/org.kalmira.Kalmira.metainfo.xml DESTINATION ${share}/metainfo COMPONENT kalmira)
install(FILES kalmira.svg DESTINATION ${share}/icons/hicolor/scalable/apps RENAME org.kalmira.Kalmira.svg
        COMPONENT kalmira)
install(FILES kalmira-mime.xml DESTINATION ${share}/mime/packages RENAME org.kalmira.Kalmira.xml COMPONENT kalmira)
# Where udev and systemd look, whatever the libraries' folder is called.
install(FILES 60-kalmira.rules DESTINATION lib/udev/rules.d COMPONENT kalmira)
install(FILES 60-kalmira.rules DESTINATION lib/udev/rules.d RENAME 60-kalmira-tools.rules COMPONENT tools)
install(FILES ${made}/kalmira-log@.service DESTINATION lib/systemd/system COMPONENT tools)

# What every program and package has besides.
function(kalmira_install_papers program component)
  if(KALMIRA_MANUALS)
    set(manual ${CMAKE_BINARY_DIR}/manual)
    kalmira_zipped(${manual}/${program}.1 page)
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
    install(FILES ${manual}/${program} DESTINATION ${share}/bash-completion/completions COMPONENT ${component})
    install(FILES ${manual}/_${program} DESTINATION ${share}/zsh/vendor-completions COMPONENT ${component})
  endif()
endfunction()

# A file packed so that the same content gives the same bytes.
find_program(KALMIRA_GZIP gzip REQUIRED)
function(kalmira_zipped file zipped)
  cmake_path(GET file FILENAME name)
  set(out ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz)
  add_custom_command(OUTPUT ${out} COMMAND ${KALMIRA_GZIP} -9 -n -c ${file} > ${out} DEPENDS ${file} VERBATIM)
  add_custom_target(zipped_${name} ALL DEPENDS ${out})
  set(${zipped} ${out} PARENT_SCOPE)
endfunction()

foreach(program ${windows})
  kalmira_install_papers(${program} kalmira)
endforeach()
foreach(program ${tools})
  kalmira_install_papers(${program} tools)
endforeach()

# Debian wants its own log besides; the moment is that of the sources, so that a package can be made again.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  file(TIMESTAMP ${CMAKE_SOURCE_DIR}/CHANGELOG.md date "%a, %d %b %Y %H:%M:%S +0000" UTC)
else()
  execute_process(COMMAND date -u -d @$ENV{SOURCE_DATE_EPOCH} "+%a, %d %b %Y %H:%M:%S +0000"
                  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
set(release 1)
set(maintainer "The Kalmira developers <developers@kalmira.example>")
configure_file(${CMAKE_SOURCE_DIR}/CHANGELOG.md changelog COPYONLY)
kalmira_zipped(${CMAKE_CURRENT_BINARY_DIR}/changelog log)
file(READ ${CMAKE_SOURCE_DIR}/LICENSE license)
string(REGEX REPLACE "\n([^\n])" "\n \\1" license "${license}")
string(REGEX REPLACE "\n\n" "\n .\n" license "${license}")
string(STRIP "${license}" license)
configure_file(copyright.in copyright @ONLY)
foreach(package kalmira kalmira-tools)
  string(REGEX REPLACE "^kalmira-" "" component ${package})
  set(debian ${CMAKE_CURRENT_BINARY_DIR}/${package})
  configure_file(changelog.Debian.in ${debian}/${package}.changelog.Debian @ONLY)
  kalmira_zipped(${debian}/${package}.changelog.Debian packed)
  set(papers ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES ${packed} DESTINATION ${papers} RENAME changelog.Debian.gz COMPONENT ${component})
  install(FILES ${log} DESTINATION ${papers} RENAME changelog.gz COMPONENT ${component})
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/copyright DESTINATION ${papers} COMPONENT ${component})
endforeach()
set(guides data-file-format export-formats settings-file-format instrument-links checking-files serial-ports unattended)
foreach(guide ${guides})
  install(FILES ${CMAKE_SOURCE_DIR}/docs/${guide}.md DESTINATION ${share}/doc/kalmira-tools COMPONENT tools)
endforeach()
install(FILES example.conf DESTINATION ${share}/doc/kalmira-tools/examples COMPONENT tools)
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${share}/doc/kalmira COMPONENT kalmira)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The Kalmira developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL kalmira tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${KALMIRA_HOMEPAGE})
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
configure_file(postinst postinst COPYONLY)
configure_file(postinst postrm COPYONLY)
set(scripts "${CMAKE_CURRENT_BINARY_DIR}/postinst;${CMAKE_CURRENT_BINARY_DIR}/postrm")

set(CPACK_DEBIAN_KALMIRA_PACKAGE_NAME kalmira)
set(CPACK_DEBIAN_KALMIRA_PACKAGE_CONTROL_EXTRA ${scripts})
# Qt finds its screens at run time, so nothing tells that they are needed.
set(CPACK_DEBIAN_KALMIRA_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_KALMIRA_PACKAGE_RECOMMENDS "kalmira-tools, fonts-dejavu-core | fonts-liberation, qt6-wayland")
set(CPACK_COMPONENT_KALMIRA_DESCRIPTION
"field data logger for ground-conductivity instruments
Reads the serial stream of a hand-carried electromagnetic ground-conductivity
instrument and a GPS receiver, shows values and a scrolling profile, and writes
every reading, station, comment and position into one data file.
Data files can be viewed, and exported as tables and maps.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kalmira-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA ${scripts})
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"ground-conductivity logging without a screen, export and checks
Programs beside the Kalmira logger: kalmira-log records on carts, masts and
sledges, with a service for machines; kalmira-export makes tables
and maps of data files; kalmira-check says whether they are sound and repairs
them; kalmira-sim plays instruments and receivers.")
include(CPack)
