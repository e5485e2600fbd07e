include(CMakePackageConfigHelpers)

install(TARGETS orvwebpage orvwebpage_static EXPORT OrvWebPageTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/orvwebpage DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${ORV_GENERATED_INCLUDE}/orvwebpage/OrvVersion.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvwebpage)
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

# The prefix is found from where the .pc file lies, so an install under any
# --prefix (or a moved one) describes itself.
file(RELATIVE_PATH ORV_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" ORV_PC_TO_PREFIX "${ORV_PC_TO_PREFIX}")
configure_file(cmake/orvwebpage.pc.in ${PROJECT_BINARY_DIR}/orvwebpage.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvwebpage.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
