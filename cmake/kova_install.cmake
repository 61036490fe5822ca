# cmake --install ships the same tree that the build assembles: the home folder, the public headers.
install(DIRECTORY "${KOVA_HOME_DIR}/" DESTINATION "${CMAKE_INSTALL_LIBDIR}/kovadx" USE_SOURCE_PERMISSIONS)
install(FILES src/api/kovadx.h src/api/kovadx_ext.h src/api/kovadx_runtime.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
