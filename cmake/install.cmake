# What `cmake --install` lays down. All of it finds its way from where it is, so the tree may be moved.
include(CMakePackageConfigHelpers)
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/bci)

install(DIRECTORY h/ signals/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/bci FILES_MATCHING PATTERN "*.h")

set_target_properties(bci_shared PROPERTIES EXPORT_NAME bci)
install(TARGETS bci_shared bci_static EXPORT bciTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# What was compiled for optimization across sources is good for this very compiler alone. The ordinary code beside it
# is good for all.
install(CODE "
  execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND \"${CMAKE_OBJCOPY}\" --enable-deterministic-archives
    --remove-section=.gnu.lto_* --remove-section=.gnu.debuglto_* --strip-symbol=__gnu_lto_v1
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/libbci.a\")")

install(EXPORT bciTargets NAMESPACE bci:: DESTINATION ${package_directory})
# As long as the shared library's SONAME is the same, so is the package.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/bciConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/bciConfig.cmake ${PROJECT_BINARY_DIR}/install/bciConfigVersion.cmake
  DESTINATION ${package_directory})

file(RELATIVE_PATH BCI_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" BCI_PREFIX_FROM_PC ${BCI_PREFIX_FROM_PC})
configure_file(${PROJECT_SOURCE_DIR}/cmake/bci.pc.in ${PROJECT_BINARY_DIR}/install/bci.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/install/bci.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(BCI_BUILD_COMMAND)
  install(TARGETS bci_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  # Manual pages, completions and the dissector, as the command itself knows them.
  set(generated ${PROJECT_BINARY_DIR}/install/generated)
  add_custom_command(OUTPUT ${generated}/complete
    COMMAND ${CMAKE_COMMAND} -D "COMMAND=$<TARGET_PROPERTY:bci_command,CROSSCOMPILING_EMULATOR>;$<TARGET_FILE:bci_command>"
      -D DIRECTORY=${generated} -P ${PROJECT_SOURCE_DIR}/cmake/generated.cmake
    DEPENDS bci_command ${PROJECT_SOURCE_DIR}/cmake/generated.cmake
    VERBATIM)
  add_custom_target(bci_generated ALL DEPENDS ${generated}/complete)
  install(DIRECTORY ${generated}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR})
  install(DIRECTORY ${generated}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR})
  install(DIRECTORY ${generated}/lib/ DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
