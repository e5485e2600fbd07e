include(CMakePackageConfigHelpers)

install(TARGETS orvwebpage orvwebpage_static EXPORT OrvWebPageTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/orvwebpage DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT OrvWebPageTargets NAMESPACE OrvWebPage::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvWebPage)

configure_package_config_file(cmake/OrvWebPageConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OrvWebPageConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvWebPage)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvWebPageConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OrvWebPageConfig.cmake
  ${PROJECT_BINARY_DIR}/OrvWebPageConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvWebPage)

configure_file(cmake/orvwebpage.pc.in ${PROJECT_BINARY_DIR}/orvwebpage.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvwebpage.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
